// One run of a host whose SDL fails on the way, and what it must be like afterwards.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "framesink/framesink.h"
#include "support/frames.hpp"
#include "support/sdl_clock.hpp"
#include "support/sdl_recorder.hpp"

namespace framesink::test {

// Ends the process, with the reason on standard output.
[[noreturn]] void giveUp(const std::string& reason);

class FaultRun {
 public:
  FaultRun(SdlRecorder& recorder, bool synchronous)
      : synchronous_(synchronous), recorder_(recorder), clock_(recorder) {}

  // The life of a few windows: opened, drawn, renamed, raised, asked, full screen, closed by the
  // user, opened again, destroyed.
  void liveThrough();

  // SDL works again, and so do we: a new window shows a frame.
  void showHealthyFrame();

  // Some call was refused.
  bool isFaulty() const;

  SdlClock& clock() { return clock_; }

 private:
  void createAndUpdate();
  void renameRaiseAndAsk();
  void goFullscreenAndBack();
  void closeAsTheUser();
  void openAgain();

  // Each makes calls of the library; none may take a second, by either clock.
  template <class Action>
  void call(const char* name, Action action);
  void* create(const char* name, std::uint8_t fullscreen = 0, std::uint8_t synchronous = 2);
  void update(void* block, std::uint32_t seed);
  void open(const char* name, std::uint8_t fullscreen);
  bool isOpen(const char* name);
  void ask(const char* name);

  // Lets the display thread make passes; the synchronous server drains.
  void letPass(int passes = 1);

  std::uint32_t lastWindowId() const;
  void feed(SDL_Event event) { recorder_.feed(event); }

  // The scenario is what it says it is, as long as nothing was refused.
  void expect(bool holds, const char* what) const;

  const bool synchronous_;
  SdlRecorder& recorder_;
  SdlClock clock_;
  void* first_ = nullptr;
  std::uint32_t firstWindow_ = 0;
};

// What the whole run's calls must be like, once the servers have ended; gives up if they are not.
void checkCalls(const std::vector<SdlCall>& calls);

// The lines that must have been written to standard error, in no particular order.
std::vector<std::string> expectedMessages(const std::vector<SdlCall>& calls);

}  // namespace framesink::test
