// One run of a host whose SDL fails on the way, and the checks of that run.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "framesink/framesink.h"
#include "support/frames.hpp"
#include "support/sdl_clock.hpp"
#include "support/sdl_recorder.hpp"

namespace framesink::test {

// Prints the reason on standard output and ends the process.
[[noreturn]] void giveUp(const std::string& reason);

class FaultRun {
 public:
  FaultRun(SdlRecorder& recorder, bool synchronous)
      : synchronous_(synchronous), recorder_(recorder), clock_(recorder) {}

  // Takes a few windows through their lives: they are opened, drawn, renamed, raised, queried, made
  // full screen, closed by the user, opened again and destroyed.
  void liveThrough();

  // Lets SDL work again and requires that a new window shows a frame.
  void showHealthyFrame();

  // True if SDL has refused a call.
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
  template <class Action>
  void call(const char* name, Action action);
  void* create(const char* name, std::uint8_t fullscreen = 0, std::uint8_t synchronous = 2);
  void update(void* block, std::uint32_t seed);
  void open(const char* name, std::uint8_t fullscreen);
  bool isOpen(const char* name);
  void ask(const char* name);

  // Lets the display thread make passes, or the synchronous server drain.
  void letPass(int passes = 1);

  std::uint32_t lastWindowId() const;
  void feed(SDL_Event event) { recorder_.feed(event); }

  // Gives up unless the condition holds or SDL has refused a call.
  void expect(bool holds, const char* what) const;

  const bool synchronous_;
  SdlRecorder& recorder_;
  SdlClock clock_;
  void* first_ = nullptr;
  std::uint32_t firstWindow_ = 0;
};

// Checks all calls of a run, once the servers have ended; gives up if a check fails.
void checkCalls(const std::vector<SdlCall>& calls);

// The lines that the library must have printed on standard error, in no particular order.
std::vector<std::string> expectedMessages(const std::vector<SdlCall>& calls);

}  // namespace framesink::test
