// framesink-play, a host in miniature: it loads the library as a host does and sends it frames.
#include <csignal>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "command_line/command_line.hpp"
#include "doctor/doctor.hpp"
#include "host/library.hpp"
#include "showing/open_source.hpp"
#include "showing/player.hpp"
#include "system/display_check.hpp"
#include "system/failure.hpp"
#include "system/signals.hpp"

namespace framesink::play {
namespace {

constexpr const char* kUnwritable = ": cannot be written";

// Prints one line on standard error, unless a signal is the reason for the end.
void complain(const std::string& what) {
  if (stopSignal() == 0) std::fprintf(stderr, "framesink-play: %s\n", what.c_str());
}

ExitStatus printVersion(const ProgramOptions& options) {
  std::cout << "framesink-play " << FRAMESINK_PLAY_VERSION << std::endl;
  const Library library(options.sharedLibrary);
  std::cout << "framesink " << library.version << " of " << library.buildDate << ", "
            << library.path() << std::endl;
  return kPlayed;
}

std::vector<std::unique_ptr<Source>> openSources(const CommandLine& line) {
  std::vector<std::unique_ptr<Source>> sources;
  for (const Options& options : line.sources) sources.push_back(openSource(options));
  return sources;
}

// Runs before anything is shown, so that a wrong path fails at once.
std::vector<std::ofstream> openDumps(const CommandLine& line) {
  std::vector<std::ofstream> dumps;
  for (const Options& options : line.sources) {
    std::ofstream& out = dumps.emplace_back();
    if (options.dumpFile.empty()) continue;
    out.open(options.dumpFile, std::ios::binary);
    if (!out) throw Failure(kSourceTrouble, options.dumpFile + kUnwritable);
  }
  return dumps;
}

// Returns false if a requested dump could not be written.
bool dump(const Show& show, std::ofstream& out) {
  if (!out.is_open()) return true;
  show.dump(out);
  return !out.flush().fail();
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

// Plays all sources. Returns a line for each damaged source and each dump that was not written.
std::vector<std::string> play(const CommandLine& line) {
  const Library library(line.program.sharedLibrary);
  auto sources = openSources(line);
  requireDisplay();
  auto dumps = openDumps(line);
  Player player(line.sources, library, std::move(sources));
  player.run();
  std::vector<std::string> troubles;
  for (std::size_t i = 0; i < dumps.size(); ++i) {
    const Show& show = *player.shows()[i];
    if (!dump(show, dumps[i])) troubles.push_back(line.sources[i].dumpFile + kUnwritable);
    if (const std::string trouble = show.trouble(); !trouble.empty()) troubles.push_back(trouble);
  }
  printStatistics(player, line.program.statistics);
  return troubles;
}

ExitStatus playAndComplain(const CommandLine& line) {
  const std::vector<std::string> troubles = play(line);
  for (const std::string& trouble : troubles) complain(trouble);
  return troubles.empty() ? kPlayed : kSourceTrouble;
}

int run(int argc, char** argv) try {
  const auto line = parseCommandLine(argc, argv);
  if (!line) return kPlayed;
  if (line->program.version) return printVersion(line->program);
  if (line->program.doctor) return runDoctor(line->program);
  return playAndComplain(*line);
} catch (const Failure& failure) {
  complain(failure.what());
  return failure.status;
} catch (const std::bad_alloc&) {
  complain("out of memory");
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
