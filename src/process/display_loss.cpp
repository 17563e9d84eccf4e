#include "process/display_loss.hpp"

#include <atomic>
#include <cstdio>

#include "process/host_calls.hpp"
#include "process/sdl_session.hpp"

namespace framesink {
namespace {

using Clock = std::chrono::steady_clock;

constinit std::atomic<bool> lost{false};
constinit std::atomic<bool> noWindowReported{false};
constinit std::atomic<int> depth{0};              // of callSdl; changed inside the gate only
constinit std::atomic<Clock::rep> callsBegan{0};  // of the clock; 0: no calls are under way

Clock::rep now() { return Clock::now().time_since_epoch().count(); }

}  // namespace

bool isDisplayLost() { return lost; }

void declareDisplayLost() {
  if (lost.exchange(true)) return;
  endSdlGeneration();
  rememberDisplayLoss();
  if (!haveHostCallsEnded()) std::fputs("The display is gone; the model runs on.\n", stderr);
}

void loseDisplay() {
  declareDisplayLost();
  throw DisplayLost();
}

void inheritDisplayLoss() {
  lost = true;
  endSdlGeneration();
}

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
