#include <csignal>
#include <cstdlib>
#include <initializer_list>

#include "system/signals.hpp"

namespace framesink::play {
namespace {

volatile std::sig_atomic_t stoppedBy = 0;

}  // namespace

// SIGBREAK comes with Ctrl-Break and when the console is closed. The system forgets a handler once
// it is called: a second signal ends the process.
void catchStopSignals() {
  for (const int number : {SIGINT, SIGTERM, SIGBREAK}) {
    std::signal(number, [](int caught) { stoppedBy = caught; });
  }
}

int stopSignal() { return stoppedBy; }

void dieBySignal(int number) { std::_Exit(128 + number); }

}  // namespace framesink::play
