#include <csignal>
#include <cstdlib>
#include <initializer_list>

#include "system/signals.hpp"

namespace framesink::play {
namespace {

volatile std::sig_atomic_t stoppedBy = 0;

}  // namespace

// Ctrl-Break and closing the console raise SIGBREAK. Windows removes a handler when it calls it, so
// a second signal ends the process.
void catchStopSignals() {
  for (const int number : {SIGINT, SIGTERM, SIGBREAK}) {
    std::signal(number, [](int caught) { stoppedBy = caught; });
  }
}

int stopSignal() { return stoppedBy; }

void dieBySignal(int number) { std::_Exit(128 + number); }

}  // namespace framesink::play
