// framesink-play: a host in miniature. It loads the library as a host does and shows it frames.
#include <csignal>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <new>

#include "display_check.hpp"
#include "failure.hpp"
#include "library.hpp"
#include "open_source.hpp"
#include "options.hpp"
#include "player.hpp"
#include "signals.hpp"

namespace framesink::play {
namespace {

void printVersion(const Options& options) {
  std::cout << "framesink-play " << FRAMESINK_PLAY_VERSION << std::endl;
  const Library library(options.sharedLibrary);
  std::cout << "framesink " << library.version << " of " << library.buildDate << ", "
            << library.path() << std::endl;
}

std::ofstream openDump(const std::string& path) {
  std::ofstream out;
  if (!path.empty()) out.open(path, std::ios::binary);
  if (!path.empty() && !out) throw Failure(kSourceTrouble, path + ": cannot be written");
  return out;
}

void play(const Options& options) {
  const Library library(options.sharedLibrary);
  auto source = openSource(options);
  requireDisplay();
  std::ofstream dump = openDump(options.dumpFile);
  Player player(options, library, std::move(source));
  player.run();
  if (dump.is_open()) {
    player.dump(dump);
    if (!dump.flush()) throw Failure(kSourceTrouble, options.dumpFile + ": cannot be written");
  }
  if (!player.trouble().empty()) throw Failure(kSourceTrouble, player.trouble());
}

// What is told after a signal is of no interest any more: the signal is why it ended.
int tell(ExitStatus status, const char* what) {
  if (stopSignal() == 0) std::fprintf(stderr, "framesink-play: %s\n", what);
  return status;
}

int run(int argc, char** argv) try {
  const auto options = parseOptions(argc, argv);
  if (!options) return kPlayed;
  if (options->version) {
    printVersion(*options);
  } else {
    play(*options);
  }
  return kPlayed;
} catch (const Failure& failure) {
  return tell(failure.status, failure.what());
} catch (const std::bad_alloc&) {
  return tell(kSourceTrouble, "out of memory");
}

}  // namespace
}  // namespace framesink::play

int main(int argc, char** argv) {
  using namespace framesink::play;
  catchStopSignals();
  const int status = run(argc, argv);
  if (stopSignal() != 0) dieBySignal(stopSignal());
  return status;
}
