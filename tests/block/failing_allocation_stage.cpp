#include "failing_allocation_stage.hpp"

#include <algorithm>
#include <chrono>
#include <new>

#include "display/server_instances.hpp"
#include "display/video_window_registry.hpp"
#include "support/allocations.hpp"
#include "support/sdl_windows.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

constexpr std::uint32_t kPlayers = 1000;  // more than the tests ever open

template <class Call>
void promptly(Call call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  EXPECT_LT(std::chrono::steady_clock::now() - start, kAtOnce);
}

template <class Action>
void forEachOpenPlayer(Action action) {
  for (const bool synchronous : {false, true}) {
    SdlServer* server = existingServer(synchronous);
    if (server == nullptr) continue;
    for (std::uint32_t player = 0; player < kPlayers; ++player) {
      if (server->hasOpenPlayer(player)) action(*server, player);
    }
  }
}

std::size_t openPlayers() {
  std::size_t number = 0;
  forEachOpenPlayer([&](SdlServer&, std::uint32_t) { ++number; });
  return number;
}

std::vector<std::int32_t> posSize(const std::string& name) {
  std::vector<std::int32_t> result(4, 4711);
  getWindowPosSize(name.c_str(), result.data(), result.data() + 2);
  return result;
}

Seen::Name seenOf(const std::string& name) {
  const VideoWindow* window = videoWindowRegistry().findVideoWindow(name);
  return {.frame = window == nullptr ? std::nullopt : std::optional(window->frameSize()),
          .open = isPlayerOpen(name.c_str()) != 0,
          .posSize = posSize(name)};
}

std::ostream& operator<<(std::ostream& out, const Seen::Name& name) {
  out << (name.frame ? "frames " + std::to_string(name.frame->width) + " wide" : "unknown");
  out << (name.open ? ", open at" : ", closed at");
  for (const std::int32_t number : name.posSize) out << " " << number;
  return out;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Seen& seen) {
  out << seen.old << "; renamed: " << seen.renamed << "; windows:";
  for (const std::string& title : seen.titles) out << " '" << title << "'";
  return out;
}

Stage::Stage(std::uint8_t synchronous) {
  request_.synchronous = synchronous;
  if (synchronous != 0) request_.name += " synchronous";
}

Stage::~Stage() {
  destroyBlocks();
  for (const std::string& name : {request_.name, newName_}) destroyVideoWindow(name.c_str());
  forEachOpenPlayer([](SdlServer& server, std::uint32_t player) { server.closePlayer(player); });
  EXPECT_TRUE(waitUntil([] { return sdlWindowCount() == 0; })) << "windows are left";
  EXPECT_TRUE(error_.isUntouched()) << error_.data();
}

Seen Stage::seen() const {
  Seen seen{.old = seenOf(request_.name), .renamed = seenOf(newName_), .titles = {}};
  EXPECT_TRUE(waitUntil([] { return sdlWindowCount() == openPlayers(); }));
  for (const SdlWindowFacts& window : sdlWindows()) seen.titles.insert(window.title);
  return seen;
}

bool Stage::isOpenWithoutWindow() const {
  const bool isWithout = posSize(request_.name) == std::vector<std::int32_t>(4, -2);
  return isWithout && isPlayerOpen(request_.name.c_str()) != 0;
}

void Stage::create(Size frame, std::uint8_t openAtStart) {
  request_.openAtStart = openAtStart;
  const InputDescription& input = frame == kFrame ? input_ : otherInput_;
  void* handle = nullptr;
  promptly([&] {
    try {
      handle = createBlock(error_.data(), request_, &input);
    } catch (const std::bad_alloc&) {
    }
  });
  const OutOfMemory enough(SIZE_MAX);
  if (handle != nullptr) blocks_.push_back({handle, plainPlanes(0x808080, frame)});
}

void Stage::update() {
  for (const Block& block : blocks_) {
    for (const std::uint32_t columns : {FRAMESINK_CONFIGURED_SIZE, 8U}) {
      promptly([&] {
        const auto& planes = block.planes;
        libStart(block.handle, error_.data());
        libUpdate(block.handle, error_.data(), planes[0], planes[1], planes[2], columns,
                  FRAMESINK_CONFIGURED_SIZE);
      });
    }
  }
}

void Stage::destroyBlocks() {
  for (const Block& block : blocks_) {
    promptly([&] {
      libTerminate(block.handle);
      libDestroy(block.handle);
    });
  }
  blocks_.clear();
}

void Stage::openWindow() {
  const std::uint32_t position[2] = {200, 150};
  const std::uint32_t size[2] = {90, 70};
  promptly([&] { createVideoWindow(request_.name.c_str(), 0, position, size, 1); });
}

void Stage::rename() {
  promptly([&] { renameVideoWindow(request_.name.c_str(), newName_.c_str(), newTitle_.c_str()); });
  // The title comes with the next pass. A record that keeps its name requests none, and a player
  // without a window gets none.
  const OutOfMemory enough(SIZE_MAX);
  const bool isOpen = isPlayerOpen(newName_.c_str()) != 0 && posSize(newName_)[0] >= 0;
  if (request_.synchronous != 0 || !isOpen) return;
  EXPECT_TRUE(waitUntil([&] {
    const auto windows = sdlWindows();
    return std::ranges::any_of(windows, [&](const auto& w) { return w.title == newTitle_; });
  }));
}

void Stage::destroyWindow() {
  promptly([&] { destroyVideoWindow(request_.name.c_str()); });
}

void Stage::ask() {
  std::int32_t pairs[4];
  promptly([&] { isPlayerOpen(request_.name.c_str()); });
  promptly([&] { getWindowPosSize(request_.name.c_str(), pairs, pairs + 2); });
}

}  // namespace framesink::test
