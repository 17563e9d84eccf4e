#include "system/signals.hpp"

#include <array>
#include <csignal>
#include <cstdlib>

namespace framesink::play {
namespace {

constexpr std::array kStopSignals{SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t stoppedBy = 0;

}  // namespace

void catchStopSignals() {
  for (const int number : kStopSignals) {
    struct sigaction before {};
    sigaction(number, nullptr, &before);
    if (number == SIGHUP && before.sa_handler == SIG_IGN) continue;
    struct sigaction action {};
    action.sa_handler = [](int caught) { stoppedBy = caught; };
    // Without SA_RESTART the signal ends a read that waits for a pipe.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(number, &action, nullptr);
  }
}

int stopSignal() { return stoppedBy; }

void dieBySignal(int number) {
  std::signal(number, SIG_DFL);
  std::raise(number);
  std::_Exit(128 + number);
}

}  // namespace framesink::play
