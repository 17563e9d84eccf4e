#include "display_passes.hpp"

#include <SDL.h>
#include <dlfcn.h>

#include <atomic>

namespace framesink::bench {
namespace {

constinit std::atomic<std::uint32_t> presented{0};
constinit std::atomic<std::uint32_t> passes{0};
constinit std::atomic<bool> held{false};
constinit std::atomic<bool> isParked{false};
constinit thread_local bool isExempt = false;

// SDL's own function, which this program's function of the same name hides.
template <class Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void awaitAfter(const std::atomic<std::uint32_t>& counter, std::uint32_t count) {
  while (counter.load() == count) counter.wait(count);
}

void parkWhileHeld() {
  while (held) {
    isParked = true;
    isParked.notify_all();
    held.wait(true);
  }
  isParked = false;
}

}  // namespace

std::uint32_t presentedFrames() { return presented; }
void awaitPresentedAfter(std::uint32_t count) { awaitAfter(presented, count); }
std::uint32_t endedPasses() { return passes; }

// Waits for two passes, because the first may have begun before this call.
void awaitIdleDisplay() {
  const std::uint32_t count = passes;
  awaitAfter(passes, count);
  awaitAfter(passes, count + 1);
}

DisplayThreadHold::DisplayThreadHold() {
  held = true;
  isParked.wait(false);
}

DisplayThreadHold::~DisplayThreadHold() {
  held = false;
  held.notify_all();
}

void exemptThisThreadFromHold() { isExempt = true; }

}  // namespace framesink::bench

extern "C" {

void SDL_RenderPresent(SDL_Renderer* renderer) {
  using namespace framesink::bench;
  static auto* const present = next<decltype(SDL_RenderPresent)>("SDL_RenderPresent");
  present(renderer);
  ++presented;
  presented.notify_all();
}

void SDL_Delay(Uint32 milliseconds) {
  using namespace framesink::bench;
  static auto* const delay = next<decltype(SDL_Delay)>("SDL_Delay");
  ++passes;
  passes.notify_all();
  if (!isExempt) parkWhileHeld();
  delay(milliseconds);
}

}  // extern "C"
