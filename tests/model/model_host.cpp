#include "model_host.hpp"

#include <SDL.h>

#include <algorithm>
#include <stdexcept>

#include "../display/events.hpp"
#include "display/server_instances.hpp"
#include "process/display_loss.hpp"
#include "support/sdl_windows.hpp"

namespace framesink::model {
namespace {

using Kind = Operation::Kind;

constexpr Pair kOpenPosition{200, 150};
constexpr Pair kOpenSize{110, 60};
constexpr Deed kMove{Deed::Kind::kMove, {300, 210}};
constexpr Deed kResize{Deed::Kind::kResize, {120, 80}};
constexpr const char* kWrittenTitle = "renamed\nwindow";
constexpr const char* kTitle = "renamed window";

// A drain ends at each event that belongs to none of our windows. After so many, none is left.
constexpr int kDrains = 100;

Deed deedOf(Kind kind) {
  if (kind == Kind::kUserMoves) return kMove;
  if (kind == Kind::kUserResizes) return kResize;
  return {kind == Kind::kUserEscapes ? Deed::Kind::kEscape : Deed::Kind::kClose, {}};
}

SDL_Event eventOf(std::uint32_t window, const Deed& deed) {
  switch (deed.kind) {
    case Deed::Kind::kMove:
      return test::windowEvent(window, SDL_WINDOWEVENT_MOVED, deed.to.first, deed.to.second);
    case Deed::Kind::kResize:
      return test::windowEvent(window, SDL_WINDOWEVENT_RESIZED, deed.to.first, deed.to.second);
    case Deed::Kind::kEscape:
      return test::keyEvent(window, SDLK_ESCAPE);
    case Deed::Kind::kClose:
      break;
  }
  return test::windowEvent(window, SDL_WINDOWEVENT_CLOSE);
}

}  // namespace

// Creates a window in each server, which starts both. LockStep requires the display thread.
ModelHost::ModelHost() : model_(findInLibrary) {
  create({0, 0});
  create({1, 3});
  lockStep_.emplace();
  model_.nextId[false] = videoWindowRegistry().playerIdOf(kNames[0]);
  model_.nextId[true] = videoWindowRegistry().playerIdOf(kNames[1]);
  applyTo(model_, {Kind::kCreate, 0, 0}, blocks_);
  applyTo(model_, {Kind::kCreate, 1, 3}, blocks_);
}

ModelHost::~ModelHost() {
  try {
    startOver();
  } catch (const std::exception& error) {
    ADD_FAILURE() << error.what();
  }
}

void ModelHost::startOver() {
  for (const auto& [slot, handle] : blocks_) libDestroy(handle.block);
  blocks_.clear();
  for (std::size_t i = model_.records.size(); i > 0; --i) {
    for (const char* name : kNames) destroyVideoWindow(name);
  }
  for (const char* name : kNames) {
    if (findInLibrary(name) != nullptr) throw std::runtime_error("a name is not forgotten");
  }
  for (const bool synchronous : {false, true}) {
    for (const auto& [id, player] : model_.players[synchronous]) {
      serverFor(synchronous).closePlayer(static_cast<std::uint32_t>(id));
    }
  }
  for (int i = 0; i < kDrains; ++i) synchronousServer().deliverFrame(-1, nullptr, {});
  settle();
  if (test::sdlWindowCount() != 0) throw std::runtime_error("windows are left");
  WindowModel fresh(findInLibrary);
  std::copy(model_.nextId, model_.nextId + 2, fresh.nextId);
  model_ = fresh;
  windowIds_.clear();
  alignNumbers();
}

void ModelHost::alignNumbers() {
  const std::uint8_t black[3] = {};
  const int next = std::max(model_.nextId[0], model_.nextId[1]);
  for (const bool synchronous : {false, true}) {
    SdlServer& server = serverFor(synchronous);
    for (int& id = model_.nextId[synchronous]; id < next; ++id) {
      server.closePlayer(server.addPlayer(black, {.title = "", .frameSize = {1, 1}}));
    }
  }
}

// ---- Operations ----

bool ModelHost::wouldChange(const Operation& operation) const {
  WindowModel after = model_;
  applyTo(after, operation, blocks_);
  const bool isNewBlock =
      operation.kind == Kind::kCreate && !blocks_.contains({operation.name, operation.form});
  return isNewBlock || !after.isSame(model_);
}

void ModelHost::apply(const Operation& operation) {
  if (operation.kind == Kind::kDisplayGoes) return loseDisplay();
  if (operation.kind >= Kind::kUserMoves) return letUserAct(operation);
  // A full-screen window takes the others out of full screen when it is made, not when it is
  // requested, and of two requested windows the display may skip the first for one pass. The model
  // knows neither, so the display settles before and after.
  const bool isFullscreen =
      operation.kind == Kind::kCreate && blockOf(0, operation.form).fullscreen;
  if (isFullscreen) settle();
  applyTo(model_, operation, blocks_);
  applyToLibrary(operation);
  if (isFullscreen) settle();
  noteAddresses();
}

void ModelHost::applyTo(WindowModel& model, const Operation& operation,
                        const std::map<Slot, Handle>& blocks) {
  const std::string name = kNames[operation.name];
  switch (operation.kind) {
    case Kind::kCreate:
      return model.create(blockOf(operation.name, operation.form));
    case Kind::kUpdate:
      for (const auto& [slot, handle] : blocks) {
        if (slot.first == operation.name) model.update(blockOf(slot.first, slot.second));
      }
      return;
    case Kind::kOpen:
    case Kind::kOpenSized:
      return model.open(name, kOpenPosition, kOpenSize, operation.kind == Kind::kOpenSized);
    case Kind::kDestroy:
      return model.destroy(name);
    case Kind::kRename:
      return model.rename(name, kNames[1 - operation.name], kTitle);
    default:
      return model.act(name, deedOf(operation.kind));
  }
}

void ModelHost::applyToLibrary(const Operation& operation) {
  const char* name = kNames[operation.name];
  const std::uint32_t position[2] = {sizeOf(kOpenPosition).width, sizeOf(kOpenPosition).height};
  const std::uint32_t size[2] = {sizeOf(kOpenSize).width, sizeOf(kOpenSize).height};
  switch (operation.kind) {
    case Kind::kCreate:
      return create({operation.name, operation.form});
    case Kind::kUpdate:
      return update(operation.name);
    case Kind::kOpen:
    case Kind::kOpenSized:
      return createVideoWindow(name, 0, position, size, operation.kind == Kind::kOpenSized);
    case Kind::kDestroy:
      return destroyVideoWindow(name);
    case Kind::kRename:
      return renameVideoWindow(name, kWrittenNames[1 - operation.name], kWrittenTitle);
    default:
      return;
  }
}

void ModelHost::create(Slot slot) {
  const Block block = blockOf(slot.first, slot.second);
  const InputDescription input = test::describe(test::kRgb, FRAMESINK_UINT8, sizeOf(block.frame));
  void* handle = libCreate(
      error_.data(), 0, kWrittenNames[slot.first], block.title.c_str(), block.fullscreen, &input,
      block.open, sizeOf(block.position).width, sizeOf(block.position).height, block.useWindowSize,
      sizeOf(block.windowSize).width, sizeOf(block.windowSize).height, 0, 0, block.synchronous);
  if (blocks_.contains(slot)) libDestroy(blocks_.at(slot).block);
  blocks_[slot] = {handle, test::plainPlanes(block.colour, sizeOf(block.frame))};
}

void ModelHost::update(int name) {
  constexpr std::uint32_t kWhole = FRAMESINK_CONFIGURED_SIZE;
  for (const auto& [slot, handle] : blocks_) {
    const auto& planes = handle.planes;
    if (slot.first != name) continue;
    libUpdate(handle.block, error_.data(), planes[0], planes[1], planes[2], kWhole, kWhole);
    for (int i = 0; i < kDrains && blockOf(name, slot.second).synchronous; ++i) {
      libUpdate(handle.block, error_.data(), nullptr, nullptr, nullptr, kWhole, kWhole);
    }
  }
}

// Does nothing if there is no window; otherwise waits until the display has handled the deed.
void ModelHost::letUserAct(const Operation& operation) {
  settle();
  const std::string name = kNames[operation.name];
  if (model_.playerOf(name) == nullptr) return;
  const Record& record = *model_.first(name);
  const std::uint32_t window = windowIds_.at({record.synchronous, record.player});
  applyTo(model_, operation, blocks_);
  test::push(eventOf(window, deedOf(operation.kind)));
  settle();
}

// The display thread, which halts between two passes, then ends.
void ModelHost::loseDisplay() {
  model_.loseDisplay();
  declareDisplayLost();
  lockStep_.reset();
}

}  // namespace framesink::model
