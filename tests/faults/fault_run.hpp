// One run of a host whose SDL fails on the way, and the checks of that run.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "framesink/framesink.h"
#include "support/frames.hpp"
#include "support/sdl_clock.hpp"
#include "support/sdl_recorder.hpp"

namespace framesink::test {

// Prints the reason on standard output and ends the process.
[[noreturn]] void giveUp(const std::string& reason);

enum class Servers { kThreaded, kSynchronous, kBoth };

class FaultRun {
 public:
  FaultRun(SdlRecorder& recorder, Servers servers)
      : servers_(servers),
        synchronous_(servers == Servers::kSynchronous),
        recorder_(recorder),
        clock_(recorder) {}

  // Takes a few windows through their lives: they are opened, drawn, renamed, raised, queried, made
  // full screen, closed by the user, opened again and destroyed. With both servers, these windows
  // are threaded, and a synchronous window is drawn at every pass.
  void liveThrough();

  // Lets SDL work again and requires that a new window shows a frame.
  void showHealthyFrame();

  // After the loss of the display: requires that all windows are closed, that none can be opened
  // and that the display thread ends.
  void liveWithoutDisplay();

  // Waits for the display thread's end, and gives up after kAtOnce.
  static void awaitDisplayThread();

  // The longest call of the library in which the display was lost, or that began after the loss.
  std::chrono::microseconds longestCallAfterLoss() const { return longestCallAfterLoss_; }

  // The processor time that the process takes while its host rests for kRest.
  static std::chrono::microseconds processorTimeAtRest();
  static constexpr std::chrono::milliseconds kRest{200};

  // True if SDL has refused a call or the display is lost.
  bool isFaulty() const;

  SdlClock& clock() { return clock_; }

 private:
  void createAndUpdate();
  void renameRaiseAndAsk();
  void goFullscreenAndBack();
  void closeAsTheUser();
  void openAgain();

  // Each of these calls the library. No call may take a second, neither by the real clock nor by
  // the one that SDL_Delay advances.
  void call(const char* name, const std::function<void()>& action);
  void* create(const char* name, std::uint8_t fullscreen = 0, std::uint8_t synchronous = 2);
  void update(void* block, std::uint32_t seed);
  void open(const char* name, std::uint8_t fullscreen);
  bool isOpen(const char* name);
  void ask(const char* name);
  void requireClosed(const char* name);

  // Lets the display thread make passes, or the synchronous server drain.
  void letPass(int passes = 1);

  std::uint32_t lastWindowId() const;
  void feed(SDL_Event event) { recorder_.feed(event); }

  // Gives up unless the condition holds or the run is faulty.
  void expect(bool holds, const char* what) const;

  const Servers servers_;
  const bool synchronous_;
  SdlRecorder& recorder_;
  SdlClock clock_;
  void* first_ = nullptr;
  void* beside_ = nullptr;  // on the synchronous server, if both are in use
  std::chrono::microseconds longestCallAfterLoss_{0};
  std::uint32_t firstWindow_ = 0;
};

// Checks all calls of a run, once the servers have ended; gives up if a check fails.
void checkCalls(const std::vector<SdlCall>& calls);

// Checks that the library has not called SDL after the loss of the display, except to end the pass
// in progress and to mark the loss; gives up otherwise.
void checkCallsAfterLoss(const std::vector<SdlCall>& calls);

// The lines that the library must have printed on standard error, in no particular order.
std::vector<std::string> expectedMessages(const std::vector<SdlCall>& calls);

}  // namespace framesink::test
