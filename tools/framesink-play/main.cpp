// framesink-play: a host in miniature. It loads the library as a host does and shows it frames.
#include <cmath>
#include <csignal>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <new>

#include "display_check.hpp"
#include "failure.hpp"
#include "library.hpp"
#include "model_source.hpp"
#include "options.hpp"
#include "player.hpp"
#include "raw_source.hpp"
#include "signals.hpp"
#include "video_source.hpp"

namespace framesink::play {
namespace {

constexpr double kRawRate = 25;  // frames per second

void printVersion(const Options& options) {
  std::cout << "framesink-play " << FRAMESINK_PLAY_VERSION << std::endl;
  const Library library(options.sharedLibrary);
  std::cout << "framesink " << library.version << " of " << library.buildDate << ", "
            << library.path() << std::endl;
}

// Raw samples have no pace of their own.
std::unique_ptr<Source> openRaw(const Options& options) {
  const double rate = options.rate.value_or(kRawRate);
  return makeRawSource(options.source, *options.raw, 1 / (std::isinf(rate) ? kRawRate : rate), 0);
}

std::unique_ptr<Source> openSource(const Options& options) {
  if (options.raw) return openRaw(options);
  if (!options.source.empty()) return makeVideoSource(options.source);
  const Extent size = options.size.value_or(Extent{kModelWidth, kModelHeight});
  return makeModelSource(size.width, size.height);
}

std::ofstream openDump(const std::string& path) {
  std::ofstream out;
  if (!path.empty()) out.open(path, std::ios::binary);
  if (!path.empty() && !out) throw Failure(kSourceTrouble, path + ": cannot be written");
  return out;
}

void play(const Options& options) {
  const Library library(options.sharedLibrary);
  const auto source = openSource(options);
  requireDisplay();
  std::ofstream dump = openDump(options.dumpFile);
  Player player(options, library, *source);
  player.run();
  if (dump.is_open()) {
    player.dump(dump);
    if (!dump.flush()) throw Failure(kSourceTrouble, options.dumpFile + ": cannot be written");
  }
  if (!source->trouble().empty()) throw Failure(kSourceTrouble, source->trouble());
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
