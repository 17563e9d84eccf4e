#include "showing/views.hpp"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>

#include "sources/input_file.hpp"
#include "system/failure.hpp"

namespace framesink::play {
namespace {

struct Look {
  Kind kind;
  const SampleType* type;
};

// A screen of 1280 x 800 pixels holds two rows of three windows. Larger windows overlap.
constexpr Place kFirstPlace{20, 60};
constexpr int kInRow = 3;
constexpr Extent kWidestStep{400, 300};
constexpr Extent kGap{20, 50};  // leaves room for the title bar

std::vector<Look> looksOf(const Options& options) {
  if (options.isDemo()) {
    return {{Kind::kRgb, findSampleType("double")},
            {Kind::kIntensity, findSampleType("single")},
            {Kind::kYcbcr422, findSampleType("uint8")}};
  }
  if (options.raw) return {{options.raw->kind, options.raw->type}};
  const char* usualType = options.source.empty() ? "double" : "uint8";
  return {{options.kind.value_or(Kind::kRgb),
           options.type != nullptr ? options.type : findSampleType(usualType)}};
}

std::string titleOf(const Options& options, const Look& look, int copy) {
  std::string title = options.title;
  if (title.empty() && options.source.empty()) title = "framesink";
  if (title.empty() && isStandardInput(options.source)) title = nameOf(options.source);
  if (title.empty()) title = std::filesystem::path(options.source).filename().string();
  if (options.isDemo() || (options.source.empty() && options.title.empty())) {
    title += std::string(": ") + infoOf(look.kind).label + " " + look.type->name;
  }
  return copy == 0 ? title : title + " (" + std::to_string(copy + 1) + ")";
}

// Returns from + steps * step, or the largest coordinate if that is smaller.
int stepped(int from, int steps, int step) {
  constexpr std::int64_t kFarthest = std::numeric_limits<int>::max();
  return static_cast<int>(std::min(from + std::int64_t{steps} * step, kFarthest));
}

// Returns the place of a source's window `number`, counted from 0. The window manager places a window
// that stands alone and has no --position.
std::optional<Place> placeOf(const Options& options, int number, Extent frame) {
  if (!options.position && !options.isDemo() && options.windowsInAll == 1) return std::nullopt;
  if (!options.ownPosition) number += options.windowsBefore;
  const Place first = options.position.value_or(kFirstPlace);
  const Extent size = options.size.value_or(frame);
  const Extent step{std::min(size.width, kWidestStep.width) + kGap.width,
                    std::min(size.height, kWidestStep.height) + kGap.height};
  return Place{stepped(first.x, number % kInRow, step.width),
               stepped(first.y, number / kInRow, step.height)};
}

}  // namespace

std::string windowName(int number) { return "framesink-play " + std::to_string(number); }

std::vector<View> openViews(const Options& options, const Library& library, const Source& source) {
  std::vector<View> views;
  int number = 0;
  for (const Look& look : looksOf(options)) {
    const int width = sentWidth(look.kind, source.width());
    if (width == 0) throw Failure(kSourceTrouble, "one column is too narrow for YCbCr 4:2:2");
    View view{{look.kind, *look.type, options.layout, width, source.height()}, {}};
    for (int copy = 0; copy < options.windows; ++copy, ++number) {
      const bool first = number == 0 && (options.ownFullscreen || options.windowsBefore == 0);
      const WindowSettings settings{.name = windowName(options.windowsBefore + number + 1),
                                    .title = titleOf(options, look, copy),
                                    .position = placeOf(options, number, {width, source.height()}),
                                    .size = options.size,
                                    .fullscreen = options.fullscreen && first,
                                    .synchronous = options.synchronous};
      view.windows.push_back(
          std::make_unique<BlockWindow>(library, settings, view.planes.description()));
    }
    if (options.measured) {
      view.twin = std::make_unique<ConversionTwin>(
          library, "framesink-play twin " + std::to_string(options.windowsBefore + number),
          view.planes.description());
    }
    views.push_back(std::move(view));
  }
  return views;
}

}  // namespace framesink::play
