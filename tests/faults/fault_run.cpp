#include "fault_run.hpp"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "display_helpers.hpp"
#include "events.hpp"
#include "process/display_loss.hpp"

namespace framesink::test {
namespace {

constexpr std::chrono::milliseconds kMostSlept{1000};  // by the clock that SDL_Delay advances
constexpr int kGaveUp = 3;

InputDescription describeFrames() {
  InputDescription description{};
  description.valid = 1;
  description.inputCount = 3;
  description.componentCount = 3;
  for (int plane = 0; plane < 3; ++plane) {
    description.widths[plane] = kFrameSize.width;
    description.heights[plane] = kFrameSize.height;
  }
  description.dataType = FRAMESINK_UINT8;
  description.layout = 1;
  return description;
}

// What a renderer has drawn. Call it right before the picture is presented, on the same thread.
Image drawnBy(std::int64_t renderer) {
  const SDL_Rect frame{0, 0, kFrameSize.width, kFrameSize.height};
  Image image{frame.w, frame.h, {}};
  image.pixels.resize(std::size_t{kFrameSize.width} * kFrameSize.height);
  SDL_RenderReadPixels(reinterpret_cast<SDL_Renderer*>(static_cast<std::intptr_t>(renderer)),
                       &frame, SDL_PIXELFORMAT_ARGB8888, image.pixels.data(), frame.w * 4);
  for (auto& pixel : image.pixels) pixel &= 0x00FFFFFF;
  return image;
}

}  // namespace

void giveUp(const std::string& reason) {
  std::printf("wrong: %s\n", reason.c_str());
  std::fflush(stdout);
  ::_exit(kGaveUp);
}

void FaultRun::expect(bool holds, const char* what) const {
  if (!holds && !isFaulty()) giveUp(what);
}

bool FaultRun::isFaulty() const {
  if (isDisplayLost()) return true;
  for (const SdlCall& call : recorder_.calls()) {
    if (call.refused) return true;
  }
  return false;
}

void FaultRun::call(const char* name, const std::function<void()>& action) {
  const std::int64_t before = clock_.now();
  const auto began = std::chrono::steady_clock::now();
  action();
  const auto took = std::chrono::steady_clock::now() - began;
  if (isDisplayLost()) {
    longestCallAfterLoss_ = std::max(longestCallAfterLoss_,
                                     std::chrono::duration_cast<std::chrono::microseconds>(took));
  }
  const bool isLate = took > kAtOnce || clock_.now() - before > kMostSlept.count();
  if (isLate) giveUp(std::string(name) + " took too long");
}

// ---- Calls ----

void* FaultRun::create(const char* name, std::uint8_t fullscreen, std::uint8_t synchronous) {
  const InputDescription description = describeFrames();
  char error[FRAMESINK_ERROR_BYTES] = "";
  void* block = nullptr;
  call("libCreate", [&] {
    block = libCreate(error, 0, name, name, fullscreen, &description, /*openAtStart=*/1, 60, 80,
                      /*useWindowSize=*/0, kFrameSize.width, kFrameSize.height, 0, 0,
                      synchronous == 2 ? synchronous_ : synchronous);
  });
  if (block == nullptr || error[0] != '\0') giveUp("libCreate reported an error");
  libStart(block, error);
  return block;
}

void FaultRun::update(void* block, std::uint32_t seed) {
  const Frame frame = noiseFrame(kFrameSize, seed);
  const std::size_t plane = frame.planes.size() / 3;
  char error[FRAMESINK_ERROR_BYTES] = "";
  call("libUpdate", [&] {
    libUpdate(block, error, frame.data(), frame.data() + plane, frame.data() + 2 * plane,
              FRAMESINK_CONFIGURED_SIZE, FRAMESINK_CONFIGURED_SIZE);
  });
  if (error[0] != '\0') giveUp("libUpdate reported an error");
}

void FaultRun::open(const char* name, std::uint8_t fullscreen) {
  const std::uint32_t position[2] = {100, 120};
  const std::uint32_t size[2] = {128, 96};
  call("createVideoWindow", [&] { createVideoWindow(name, fullscreen, position, size, 1); });
}

bool FaultRun::isOpen(const char* name) {
  bool answer = false;
  call("isPlayerOpen", [&] { answer = isPlayerOpen(name) != 0; });
  return answer;
}

void FaultRun::ask(const char* name) {
  std::int32_t position[2] = {0, 0};
  std::int32_t size[2] = {0, 0};
  call("getWindowPosSize", [&] { getWindowPosSize(name, position, size); });
  expect(size[0] > 0 && size[1] > 0, "an open window has no size");
}

void FaultRun::letPass(int passes) {
  for (int i = 0; i < passes; ++i) {
    if (servers_ == Servers::kBoth) update(beside_, 0);
    synchronous_ ? update(first_, 0) : clock_.runPass();
  }
}

// SDL numbers its windows from 1. A window whose id SDL fails to return gets no events.
std::uint32_t FaultRun::lastWindowId() const {
  const auto asked = recorder_.calls("SDL_GetWindowID");
  const std::int64_t id = asked.empty() ? 0 : asked.back().result;
  return id == 0 ? kUnknownWindow : static_cast<std::uint32_t>(id);
}

// ---- The scenario ----

void FaultRun::createAndUpdate() {
  if (servers_ == Servers::kBoth) beside_ = create("beside", 0, 1);
  first_ = create("first");
  ask("first");
  firstWindow_ = lastWindowId();
  letPass();
  for (std::uint32_t seed = 1; seed <= 3; ++seed) {
    update(first_, seed);
    letPass();
  }
  const std::size_t before = recorder_.count("SDL_LockTexture");
  for (const Uint8 kind : {SDL_WINDOWEVENT_EXPOSED, SDL_WINDOWEVENT_RESIZED}) {
    feed(windowEvent(firstWindow_, kind, 64, 48));
  }
  feed(windowEvent(firstWindow_, SDL_WINDOWEVENT_MOVED, 70, 90));
  letPass();
  expect(recorder_.count("SDL_LockTexture") >= before + 2, "the window was not drawn again");
}

void FaultRun::renameRaiseAndAsk() {
  void* second = create("second");
  letPass();
  call("renameVideoWindow", [] { renameVideoWindow("second", "renamed", "title"); });
  open("renamed", 0);
  letPass();
  expect(recorder_.count("SDL_RaiseWindow") == 1, "the window was not raised");
  ask("renamed");
  expect(isOpen("renamed"), "the renamed window is not open");
  update(second, 1);
  letPass();
  call("libDestroy", [&] { libDestroy(second); });
  call("destroyVideoWindow", [] { destroyVideoWindow("renamed"); });
  letPass();
}

// The second full-screen window takes the first out of full screen; Escape takes out the second.
void FaultRun::goFullscreenAndBack() {
  void* wide = create("wide", 1);
  ask("wide");
  update(wide, 4);
  letPass();
  void* again = create("wide", 1);  // unchanged: stays open
  void* wider = create("wider", 1);
  ask("wider");
  letPass();
  feed(keyEvent(lastWindowId(), SDLK_ESCAPE));
  letPass();
  expect(recorder_.count("SDL_SetWindowFullscreen") >= 4, "nothing left full screen");
  void* small = create("wider", 0);  // windowed: replaced by another
  letPass(2);
  for (void* block : {wide, again, wider, small}) {
    call("libDestroy", [&] { libDestroy(block); });
  }
}

void FaultRun::closeAsTheUser() {
  feed(windowEvent(firstWindow_, SDL_WINDOWEVENT_CLOSE));
  letPass(2);
  expect(!isOpen("first"), "the user could not close the window");
  update(first_, 5);
  std::int32_t position[2];
  std::int32_t size[2];
  call("getWindowPosSize", [&] { getWindowPosSize("first", position, size); });
}

void FaultRun::openAgain() {
  open("first", 0);
  letPass();
  expect(isOpen("first"), "the window could not be opened again");
  ask("first");
  update(first_, 6);
  letPass();
  libTerminate(first_);
  call("libDestroy", [&] { libDestroy(first_); });
  expect(isOpen("first"), "the window did not outlive its block");
}

void FaultRun::liveThrough() {
  createAndUpdate();
  renameRaiseAndAsk();
  goFullscreenAndBack();
  closeAsTheUser();
  openAgain();
  if (beside_ != nullptr) call("libDestroy", [&] { libDestroy(beside_); });
}

// A threaded server that failed to make its thread or its lock never has windows; the synchronous
// server still has.
void FaultRun::showHealthyFrame() {
  recorder_.suspendRefusals();
  bool isThreadless = false;
  for (const SdlCall& call : recorder_.calls()) {
    const bool isStart = call.function == "SDL_CreateThread" || call.function == "SDL_CreateMutex";
    if (isStart && call.refused) isThreadless = true;
  }
  const Frame frame = noiseFrame(kFrameSize, 99);
  Image shown;
  const SdlHook hook = recorder_.before("SDL_RenderPresent", [&](const SdlCall& call) {
    const std::int64_t renderer = recorder_.last("SDL_CreateRenderer").result;
    if (call.arguments[0] == renderer) shown = drawnBy(renderer);
  });
  void* block = create("healthy", 0, isThreadless ? 1 : 2);
  if (!isOpen("healthy")) giveUp("no healthy window");
  ask("healthy");
  first_ = block;
  letPass();
  update(block, 99);
  if (!synchronous_) clock_.runPass();
  if (shown != pictureOf(frame)) giveUp("the healthy window does not show its frame");
  call("libDestroy", [&] { libDestroy(block); });
  recorder_.resumeRefusals();
}

}  // namespace framesink::test
