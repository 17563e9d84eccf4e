#include "command_line/command_line.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <set>

#include "command_line/add_options.hpp"
#include "command_line/numbers.hpp"
#include "sources/input_file.hpp"
#include "system/failure.hpp"

namespace framesink::play {
namespace {

constexpr const char* kDescription =
    "Shows a live model, videos, images or raw samples in framesink's windows, as a host would.";
constexpr const char* kUsage =
    "Usage: framesink-play [OPTIONS] [FILE [OPTIONS]]...\n"
    "Options before the first FILE apply to every FILE, options after a FILE to that one only.\n"
    "--library, --stats, --doctor and --version apply to the program wherever they stand.\n";
constexpr const char* kFooter =
    "Exit status:\n"
    "  0  played to the end, or every window was closed\n"
    "  1  the source cannot be read or is damaged, or --dump-frame cannot be written\n"
    "  2  the command line is wrong\n"
    "  3  the library cannot be loaded or reports an error\n"
    "  4  there is no display\n"
    "After Ctrl-C or another stop signal the player cleans up and ends by that signal.";

using Words = std::vector<std::string>;

struct SourceWords {
  std::string source;
  Words options;
};

// The words that apply to all sources, and each source with its own words.
struct SplitLine {
  Words common;
  std::vector<SourceWords> sources;
};

class Help : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App*, std::string) const override { return kUsage; }
};

// Sets `app` up to read one source's words into `options` and `program`.
void describe(CLI::App& app, Options& options, ProgramOptions& program) {
  app.allow_windows_style_options(false);  // a path may begin with a slash
  const auto help = std::make_shared<Help>();
  help->column_width(21);
  app.formatter(help);
  app.footer(kFooter);
  addOptions(app, options, program);
}

// True if `next` is the argument of option `word`. --hold takes a number only.
bool takesNext(const CLI::App& app, const std::string& word, const std::string& next) {
  if (word == "--hold") return finiteNumber(next).has_value();
  const CLI::Option* option = app.get_option_no_throw(word);
  return option != nullptr && option->get_items_expected_max() > 0;
}

SplitLine split(const CLI::App& app, const Words& words) {
  SplitLine line;
  bool onlyFiles = false;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "--" && !onlyFiles) {
      onlyFiles = true;
    } else if (onlyFiles || !word.starts_with('-') || word == "-") {
      line.sources.push_back({word, {}});
    } else {
      Words& options = line.sources.empty() ? line.common : line.sources.back().options;
      options.push_back(word);
      if (i + 1 == words.size() || !takesNext(app, word, words[i + 1])) continue;
      const std::string& value = words[++i];
      if (!value.empty()) {
        options.back() += "=" + value;
      } else {
        options.push_back(value);
      }
    }
  }
  return line;
}

[[noreturn]] void refuse(std::string what) {
  std::ranges::replace(what, '\n', ' ');
  throw Failure(kUsageTrouble, what + " (see --help)");
}

// Reads the words of one source. For --help, prints the help and returns false.
bool parse(Words words, Options& options, ProgramOptions& program) {
  CLI::App app(kDescription, "framesink-play");
  describe(app, options, program);
  std::ranges::reverse(words);  // CLI11 parses from the back
  try {
    app.parse(std::move(words));
  } catch (const CLI::CallForHelp&) {
    std::cout << app.help();
    return false;
  } catch (const CLI::ParseError& error) {
    refuse(error.what());
  }
  checkOptions(options, app.count("--kind") + app.count("--type") > 0);
  return true;
}

SplitLine splitLine(int argc, char** argv) {
  Options options;
  ProgramOptions program;
  CLI::App app;
  describe(app, options, program);
  return split(app, Words(argv + 1, argv + argc));
}

bool names(const Words& words, const std::string& option) {
  return std::ranges::any_of(words,
                             [&](const std::string& word) { return word.starts_with(option); });
}

void checkFiles(const std::vector<SourceWords>& sources) {
  bool standardInput = false;
  for (const SourceWords& own : sources) {
    if (own.source.empty()) refuse("FILE: its name is empty");
    if (!isStandardInput(own.source)) continue;
    if (standardInput) refuse("FILE: standard input (-) can be played once only");
    standardInput = true;
  }
}

void checkDumps(const std::vector<Options>& sources) {
  std::set<std::string> files;
  for (const Options& options : sources) {
    if (options.dumpFile.empty() || files.insert(options.dumpFile).second) continue;
    throw Failure(kUsageTrouble, "--dump-frame: each FILE needs a file of its own");
  }
}

void countWindows(std::vector<Options>& sources) {
  int windows = 0;
  for (Options& options : sources) {
    options.windowsBefore = windows;
    windows += options.windows;
  }
  for (Options& options : sources) options.windowsInAll = windows;
}

void finish(CommandLine& line) {
  checkDumps(line.sources);
  countWindows(line.sources);
  for (Options& options : line.sources) options.measured = !line.program.statistics.empty();
}

}  // namespace

std::optional<CommandLine> parseCommandLine(int argc, char** argv) {
  SplitLine line = splitLine(argc, argv);
  checkFiles(line.sources);
  CommandLine result;
  if (line.sources.empty()) {
    result.sources.emplace_back();
    if (!parse(line.common, result.sources.back(), result.program)) return std::nullopt;
  }
  for (const SourceWords& own : line.sources) {
    Words words = line.common;
    words.insert(words.end(), own.options.begin(), own.options.end());
    words.insert(words.end(), {"--", own.source});
    Options& options = result.sources.emplace_back();
    options.ownPosition = names(own.options, "--position");
    options.ownFullscreen = names(own.options, "--fullscreen");
    if (!parse(std::move(words), options, result.program)) return std::nullopt;
  }
  finish(result);
  return result;
}

}  // namespace framesink::play
