// The connection to the display, which may be lost inside any call of SDL that uses it: the X
// server ends, the network fails, or a session manager cuts the connection.
//
// Xlib reports the loss from deep inside such a call, with its own locks and SDL's held, and ends
// the process if the report returns. Therefore the report never returns: loseDisplay throws a C++
// exception through Xlib and SDL, whose C code has unwind tables, and callSdl catches it. The locks
// stay held, so nothing of SDL or Xlib is called any more, not even SDL_Quit.
#pragma once

#include <chrono>
#include <cstdint>

namespace framesink {

// True once the display is lost, for good. All windows then count as closed. Any thread.
bool isDisplayLost();

// Ends the SDL calls that this thread makes inside callSdl, and the display. Prints one line on
// standard error unless the library is leaving.
[[noreturn]] void loseDisplay();

// Ends the display outside of SDL's calls. Any thread.
void declareDisplayLost();

// Takes over the loss that an earlier load of the library left behind in this process's SDL, and
// prints nothing. False if there is none.
bool inheritDisplayLoss();

// From now on, a loss prints nothing: the library is leaving.
void expectDisplayLoss();

// Prints, once, that windows can no longer be opened.
void reportNoWindow();

// True while this thread is inside callSdl. Only for the thread that holds the gate.
bool isCallingSdl();

// How long the SDL calls under way have taken; zero if there are none. Any thread.
std::chrono::milliseconds timeInSdl();

// What loseDisplay throws.
struct DisplayLost {};

// Marks the calls of SDL that a thread in the gate makes while it lives. May be nested.
class SdlCalls {
 public:
  SdlCalls();
  ~SdlCalls();
  SdlCalls(const SdlCalls&) = delete;
  SdlCalls& operator=(const SdlCalls&) = delete;

  bool areNested() const;
};

// Runs `calls`, which call SDL. Every call that may use the display is made through here, inside
// the gate, so that the loss meets one thread only. False if the display is lost, before or during
// `calls`; what they call is then cut short where the loss met it.
template <class Calls>
bool callSdl(Calls&& calls) {
  if (isDisplayLost()) return false;
  const SdlCalls marked;
  try {
    calls();
  } catch (const DisplayLost&) {
    if (marked.areNested()) throw;
    return false;
  }
  return true;
}

}  // namespace framesink
