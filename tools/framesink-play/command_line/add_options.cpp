#include "command_line/add_options.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>

#include "command_line/numbers.hpp"
#include "command_line/parse_raw_form.hpp"
#include "sources/input_file.hpp"
#include "sources/model_source.hpp"
#include "system/failure.hpp"
#include "system/loader.hpp"

namespace framesink::play {
namespace {

constexpr double kForever = std::numeric_limits<double>::infinity();
constexpr double kMostSeconds = 1e8;
constexpr double kMostRate = 1e9;  // frames per second
constexpr int kMostWindows = 64;
constexpr int kMostSide = 20000;  // pixels of a window

[[noreturn]] void refuse(const std::string& option, const std::string& value,
                         const std::string& wanted) {
  throw CLI::ValidationError(option, "\"" + value + "\" is not " + wanted);
}

void parseSize(const std::string& text, Options& options) {
  const auto size = pairOf(text, 'x');
  const auto fits = [](int pixels) { return pixels >= 1 && pixels <= kMostSide; };
  if (!size || !fits(size->first) || !fits(size->second)) {
    refuse("--size", text, "WIDTHxHEIGHT, each from 1 to 20000");
  }
  options.size = Extent{size->first, size->second};
}

void parsePosition(const std::string& text, Options& options) {
  const auto place = pairOf(text, ',');
  if (!place) refuse("--position", text, "X,Y in whole pixels");
  options.position = Place{place->first, place->second};
}

void parseRaw(const std::string& text, Options& options) {
  options.raw = parseRawForm(text);
  if (!options.raw) {
    refuse("--raw", text,
           "WIDTHxHEIGHT:TYPE:KIND or the same with \":packed\", at most 2^27 pixels, "
           "an even width for ycbcr422");
  }
}

void parseRate(const std::string& text, Options& options) {
  options.rate = text == "max" ? kForever : finiteNumber(text).value_or(0);
  const bool fits = options.rate >= 1 / kMostSeconds && options.rate <= kMostRate;
  if (text != "max" && !fits) refuse("--fps", text, "\"max\" or a number above 0, up to 10^9");
}

double parseSeconds(const std::string& option, const std::string& text) {
  const auto seconds = finiteNumber(text);
  if (!seconds || *seconds < 0 || *seconds > kMostSeconds) {
    refuse(option, text, "a number of seconds");
  }
  return *seconds;
}

template <class Table>
std::vector<std::string> namesOf(const Table& table) {
  std::vector<std::string> names;
  names.reserve(table.size());
  for (const auto& row : table) names.emplace_back(row.name);
  return names;
}

void addPictureOptions(CLI::App& app, Options& options) {
  app.add_option_function<std::string>(
         "--kind",
         [&](const std::string& name) {
           options.kind = std::ranges::find(kKinds, name, &KindInfo::name)->kind;
         },
         "What the planes hold (default: rgb)")
      ->check(CLI::IsMember(namesOf(kKinds)).description(""))
      ->type_name("rgb|intensity|ycbcr422");
  app.add_option_function<std::string>(
         "--type", [&](const std::string& name) { options.type = findSampleType(name); },
         "double, single, int8, uint8, int16, uint16, int32, uint32 or\n"
         "boolean (default: uint8, for the model double)")
      ->check(CLI::IsMember(namesOf(sampleTypes())).description(""))
      ->type_name("TYPE");
  app.add_option_function<std::string>(
         "--layout",
         [&](const std::string& name) {
           options.layout = name == "row" ? Layout::kRow : Layout::kColumn;
         },
         "Order of the samples (default: column); row leaves most of the\n"
         "window as it was")
      ->check(CLI::IsMember({"column", "row"}).description(""))
      ->type_name("column|row");
}

void addRawOption(CLI::App& app, Options& options) {
  app.add_option_function<std::string>(
         "--raw", [&](const std::string& text) { parseRaw(text, options); },
         "FILE holds raw samples, for example 640x480:double:rgb: plane\n"
         "after plane, each column by column; with :packed at the end row\n"
         "by row with the components of a pixel together (--fps: 25)")
      ->type_name("WxH:TYPE:KIND[:packed]");
}

void addWindowOptions(CLI::App& app, Options& options) {
  app.add_option("--windows", options.windows,
                 "Windows of each kind and type, up to 64 (default: 1)")
      ->check(CLI::Range(1, kMostWindows).description(""))
      ->type_name("N");
  app.add_flag("--sync", options.synchronous,
               "Draw and handle events inside each frame's call, not on a thread");
  app.add_option_function<std::string>(
         "--size", [&](const std::string& text) { parseSize(text, options); },
         "Size of each window; the model is computed in this size, too\n"
         "(default: that of the picture; of the model 400x300)")
      ->type_name("WxH");
  app.add_option_function<std::string>(
         "--position", [&](const std::string& text) { parsePosition(text, options); },
         "Where the first window goes; the others follow, three in a row")
      ->type_name("X,Y");
  app.add_flag("--fullscreen", options.fullscreen,
               "Open the first window full screen (Escape leaves it)");
  app.add_option("--title", options.title, "Title of the windows (default: what they show)")
      ->type_name("TEXT");
}

void addTimeOptions(CLI::App& app, Options& options) {
  app.add_option_function<std::string>(
         "--fps", [&](const std::string& text) { parseRate(text, options); },
         "Frames per second (default: the video's own pace, for the model 60)")
      ->type_name("R|max");
  app.add_option_function<std::string>(
         "--seek", [&](const std::string& text) { options.seek = parseSeconds("--seek", text); },
         "Begin with the frame that is due S seconds after FILE's first one")
      ->type_name("S");
  app.add_flag("--loop", options.loop, "Play FILE again and again, from --seek's frame on");
  app.add_option_function<std::string>(
         "--frames",
         [&](const std::string& text) {
           options.frames = wholeNumber<std::uint64_t>(text);
           if (options.frames.value_or(0) < 1) refuse("--frames", text, "a number of frames");
         },
         "Stop after N frames")
      ->type_name("N");
  app.add_option_function<std::string>(
         "--duration",
         [&](const std::string& text) { options.duration = parseSeconds("--duration", text); },
         "Stop after S seconds")
      ->type_name("S");
  app.add_option_function<std::string>(
         "--hold",
         [&](const std::string& text) {
           options.hold = text.empty() ? kForever : parseSeconds("--hold", text);
         },
         "Keep the last frame for S seconds, or until its windows are\n"
         "closed. An image stays anyway, for --duration if that is given;\n"
         "not with --frames")
      ->expected(0, 1)
      ->type_name("[S]");
}

void addProgramOptions(CLI::App& app, Options& options, ProgramOptions& program) {
  app.add_option("--library", program.sharedLibrary,
                 "The library to load (default: " + std::string(kLibraryName) +
                     " of this build,\notherwise the one that the loader finds)")
      ->type_name("PATH");
  app.add_option("--dump-frame", options.dumpFile,
                 "Write the last frame of the first window to FILE: its samples as\n"
                 "they were sent, plane after plane")
      ->type_name("FILE");
  app.add_flag("--stats{text}", program.statistics,
               "Print at the end, on standard output, what was sent, how late,\n"
               "the host's time for a frame, and the share of conversion in it;\n"
               "--stats=json prints JSON")
      ->check(CLI::IsMember({"text", "json"}).description(""))
      ->type_name("");
  app.add_flag("--doctor", program.doctor,
               "Print a report for bug reports; opens a test window for a second");
  app.add_flag("--version", program.version, "Print the versions of player and library");
}

void checkRaw(const Options& options, bool hasKindOrType) {
  if (!options.raw) return;
  if (options.source.empty()) {
    throw Failure(kUsageTrouble, "--raw needs a FILE (- is standard input)");
  }
  if (hasKindOrType) {
    throw Failure(kUsageTrouble, "--raw contains kind and type, and excludes --kind and --type");
  }
}

void checkTime(const Options& options) {
  if (options.source.empty() && (options.loop || options.seek > 0)) {
    throw Failure(kUsageTrouble, "--seek and --loop need a FILE; the model is live and has no end");
  }
  if (isStandardInput(options.source) && options.loop) {
    throw Failure(kUsageTrouble, "--loop: standard input cannot be played again");
  }
}

void checkModelSize(const Options& options) {
  if (!options.source.empty() || !options.size) return;
  const auto [smaller, larger] = std::minmax(options.size->width, options.size->height);
  if (smaller >= kSmallestModel && larger <= kLargestModel) return;
  throw Failure(kUsageTrouble, "--size: the model's sides go from " +
                                   std::to_string(kSmallestModel) + " to " +
                                   std::to_string(kLargestModel) + " pixels");
}

}  // namespace

void addOptions(CLI::App& app, Options& options, ProgramOptions& program) {
  // The options of one FILE come after the common ones and override them.
  app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  app.add_option("FILE", options.source,
                 "A video, an image, a sequence of images (frame-%04d.png), or -\n"
                 "for standard input (default: a model that is computed live, in\n"
                 "three windows)")
      ->type_name("");
  addPictureOptions(app, options);
  addRawOption(app, options);
  addWindowOptions(app, options);
  addTimeOptions(app, options);
  addProgramOptions(app, options, program);
}

void checkOptions(const Options& options, bool hasKindOrType) {
  checkRaw(options, hasKindOrType);
  checkTime(options);
  checkModelSize(options);
}

}  // namespace framesink::play
