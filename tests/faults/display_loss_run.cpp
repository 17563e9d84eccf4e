// A run after the loss of its display, and the check of its calls.
#include <SDL.h>
#include <SDL_syswm.h>
#include <time.h>

#include <algorithm>

#include "fault_run.hpp"
#include "process/display_loss.hpp"
#include "process/platform.hpp"
#include "support/os_facts.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

// The mark that a later load of the library finds.
constexpr const char* kMark = "FRAMESINK_DISPLAY_LOST";

std::chrono::microseconds processorTime() {
  timespec used{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  return std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec));
}

std::size_t countOf(const std::vector<SdlCall>& calls, const std::string& function) {
  return static_cast<std::size_t>(std::ranges::count(calls, function, &SdlCall::function));
}

}  // namespace

void FaultRun::requireClosed(const char* name) {
  if (isOpen(name)) giveUp(std::string(name) + " is open after the loss");
  std::int32_t position[2] = {0, 0};
  std::int32_t size[2] = {0, 0};
  call("getWindowPosSize", [&] { getWindowPosSize(name, position, size); });
  for (const std::int32_t value : {position[0], position[1], size[0], size[1]}) {
    if (value != -2) giveUp(std::string(name) + " has a place or a size after the loss");
  }
}

void FaultRun::awaitDisplayThread() {
  const bool isGone = waitUntil(
      [] { return std::ranges::count(threadNames(), std::string("sdlVideoPlayers")) == 0; },
      kAtOnce);
  if (!isGone) giveUp("the display thread lives on");
}

std::chrono::microseconds FaultRun::processorTimeAtRest() {
  const auto before = processorTime();
  sleepFor(kRest);
  return processorTime() - before;
}

void FaultRun::liveWithoutDisplay() {
  requireClosed("first");
  for (const std::uint8_t synchronous : {std::uint8_t{0}, std::uint8_t{1}}) {
    void* block = create("late", 0, synchronous);
    requireClosed("late");
    update(block, 7);
    open("late", 1);
    requireClosed("late");
    call("renameVideoWindow", [] { renameVideoWindow("late", "later", "title"); });
    requireClosed("later");
    update(block, 8);
    call("destroyVideoWindow", [] { destroyVideoWindow("later"); });
    call("libDestroy", [&] { libDestroy(block); });
  }
  clock_.release();
  awaitDisplayThread();
}

void checkCallsAfterLoss(const std::vector<SdlCall>& calls) {
  for (const SdlCall& call : calls) {
    const bool isMark = call.function == "SDL_SetHintWithPriority" && call.texts.at(0) == kMark;
    const bool isLock = call.function == "SDL_LockMutex" || call.function == "SDL_UnlockMutex";
    const bool isOurs = call.function == "SDL_WaitThread";  // made by the test, to clean up
    if (!isMark && !isLock && !isOurs) giveUp(call.function + " after the loss");
  }
  if (countOf(calls, "SDL_SetHintWithPriority") != 1) giveUp("the loss is not marked once");
  // The unlock ends the pass in progress; the pair ends the display thread.
  const std::size_t locks = countOf(calls, "SDL_LockMutex");
  const std::size_t unlocks = countOf(calls, "SDL_UnlockMutex");
  if (locks > 1 || unlocks < locks || unlocks > locks + 1) giveUp("locks after the loss");
}

}  // namespace framesink::test

// ---- Calls of SDL that are not recorded ----

namespace {

void requireDisplay(const char* function) {
  using namespace framesink;
  if (isDisplayLost()) test::giveUp(std::string(function) + " after the loss");
}

}  // namespace

extern "C" {

decltype(SDL_GetHint) __real_SDL_GetHint;
decltype(SDL_GetHint) __wrap_SDL_GetHint;
const char* __wrap_SDL_GetHint(const char* name) {
  requireDisplay("SDL_GetHint");
  return __real_SDL_GetHint(name);
}

decltype(SDL_GetCurrentVideoDriver) __real_SDL_GetCurrentVideoDriver;
decltype(SDL_GetCurrentVideoDriver) __wrap_SDL_GetCurrentVideoDriver;
const char* __wrap_SDL_GetCurrentVideoDriver() {
  requireDisplay("SDL_GetCurrentVideoDriver");
  return __real_SDL_GetCurrentVideoDriver();
}

decltype(SDL_GetWindowWMInfo) __real_SDL_GetWindowWMInfo;
decltype(SDL_GetWindowWMInfo) __wrap_SDL_GetWindowWMInfo;
SDL_bool __wrap_SDL_GetWindowWMInfo(SDL_Window* window, SDL_SysWMinfo* info) {
  requireDisplay("SDL_GetWindowWMInfo");
  return __real_SDL_GetWindowWMInfo(window, info);
}

}  // extern "C"
