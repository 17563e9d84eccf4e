// framesink-play: a host in miniature. It loads the library as a host does and shows it frames.
#include <csignal>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <new>

#include "command_line.hpp"
#include "display_check.hpp"
#include "doctor.hpp"
#include "failure.hpp"
#include "library.hpp"
#include "open_source.hpp"
#include "player.hpp"
#include "signals.hpp"

namespace framesink::play {
namespace {

// What is told after a signal is of no interest any more: the signal is why it ended.
void tell(const std::string& what) {
  if (stopSignal() == 0) std::fprintf(stderr, "framesink-play: %s\n", what.c_str());
}

void printVersion(const ProgramOptions& options) {
  std::cout << "framesink-play " << FRAMESINK_PLAY_VERSION << std::endl;
  const Library library(options.sharedLibrary);
  std::cout << "framesink " << library.version << " of " << library.buildDate << ", "
            << library.path() << std::endl;
}

std::vector<std::unique_ptr<Source>> openSources(const CommandLine& line) {
  std::vector<std::unique_ptr<Source>> sources;
  for (const Options& options : line.sources) sources.push_back(openSource(options));
  return sources;
}

// Opened before anything is shown, so that a wrong path is told at once.
std::vector<std::ofstream> openDumps(const CommandLine& line) {
  std::vector<std::ofstream> dumps;
  for (const Options& options : line.sources) {
    std::ofstream& out = dumps.emplace_back();
    if (options.dumpFile.empty()) continue;
    out.open(options.dumpFile, std::ios::binary);
    if (!out) throw Failure(kSourceTrouble, options.dumpFile + ": cannot be written");
  }
  return dumps;
}

void dump(const Show& show, std::ofstream& out, const std::string& path) {
  if (!out.is_open()) return;
  show.dump(out);
  if (!out.flush()) throw Failure(kSourceTrouble, path + ": cannot be written");
}

// A line for each source that was damaged.
void tellTrouble(const Player& player) {
  std::string lines;
  for (const auto& show : player.shows()) {
    const std::string trouble = show->trouble();
    if (trouble.empty()) continue;
    if (!lines.empty()) lines += "\nframesink-play: ";
    lines += trouble;
  }
  if (!lines.empty()) throw Failure(kSourceTrouble, lines);
}

void printStatistics(const Player& player, const std::string& form) {
  std::vector<Statistics> all;
  for (const auto& show : player.shows()) {
    for (Statistics& statistics : show->statistics()) all.push_back(std::move(statistics));
  }
  if (form == "text") printText(std::cout, all);
  if (form == "json") printJson(std::cout, all);
  std::cout.flush();  // before a signal ends the process
}

void play(const CommandLine& line) {
  const Library library(line.program.sharedLibrary);
  auto sources = openSources(line);
  requireDisplay();
  auto dumps = openDumps(line);
  Player player(line.sources, library, std::move(sources));
  player.run();
  for (std::size_t i = 0; i < dumps.size(); ++i) {
    dump(*player.shows()[i], dumps[i], line.sources[i].dumpFile);
  }
  printStatistics(player, line.program.statistics);
  tellTrouble(player);
}

int run(int argc, char** argv) try {
  const auto line = parseCommandLine(argc, argv);
  if (!line) return kPlayed;
  if (line->program.version) {
    printVersion(line->program);
  } else if (line->program.doctor) {
    return runDoctor(line->program);
  } else {
    play(*line);
  }
  return kPlayed;
} catch (const Failure& failure) {
  tell(failure.what());
  return failure.status;
} catch (const std::bad_alloc&) {
  tell("out of memory");
  return kSourceTrouble;
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
