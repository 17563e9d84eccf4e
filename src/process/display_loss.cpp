#include "process/display_loss.hpp"

#include <SDL.h>

#include <atomic>
#include <cstdio>
#include <string_view>

#include "process/sdl_gate.hpp"
#include "process/sdl_generation.hpp"
#include "process/sdl_hints.hpp"

namespace framesink {
namespace {

using Clock = std::chrono::steady_clock;

// A mark in SDL's list of hints, for a later load of the library.
constexpr const char* kMark = "FRAMESINK_DISPLAY_LOST";
constexpr const char* kForGood = "for good";  // a value that no environment has by chance

constinit std::atomic<bool> lost{false};
constinit std::atomic<bool> isExpected{false};
constinit std::atomic<bool> noWindowReported{false};
constinit std::atomic<int> depth{0};              // of callSdl; changed inside the gate only
constinit std::atomic<Clock::rep> callsBegan{0};  // of the clock; 0: no calls are under way

Clock::rep now() { return Clock::now().time_since_epoch().count(); }

}  // namespace

bool isDisplayLost() { return lost; }

void declareDisplayLost() {
  if (lost.exchange(true)) return;
  endSdlGeneration();
  if (!isExpected) std::fputs("The display is gone; the model runs on.\n", stderr);
}

void loseDisplay() {
  declareDisplayLost();
  setHint(kMark, kForGood, SDL_HINT_OVERRIDE);
  throw DisplayLost();
}

bool inheritDisplayLoss() {
  const char* const mark = SDL_GetHint(kMark);
  if (mark == nullptr || std::string_view(mark) != kForGood) return false;
  lost = true;
  endSdlGeneration();
  return true;
}

void expectDisplayLoss() { isExpected = true; }

void reportNoWindow() {
  if (noWindowReported.exchange(true)) return;
  std::fputs("No window can be opened: the display is gone.\n", stderr);
}

bool isCallingSdl() { return depth != 0 && sdlGate.isHeldByThisThread(); }

std::chrono::milliseconds timeInSdl() {
  const Clock::rep began = callsBegan;
  if (began == 0) return std::chrono::milliseconds(0);
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::duration(now() - began));
}

SdlCalls::SdlCalls() {
  if (depth.fetch_add(1) == 0) callsBegan = now();
}

SdlCalls::~SdlCalls() {
  if (depth.fetch_sub(1) == 1) callsBegan = 0;
}

bool SdlCalls::areNested() const { return depth > 1; }

}  // namespace framesink
