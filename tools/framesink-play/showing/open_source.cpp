#include "showing/open_source.hpp"

#include <cmath>

#include "sources/model_source.hpp"
#include "sources/raw_source.hpp"
#include "video/video_source.hpp"

namespace framesink::play {
namespace {

constexpr double kRawRate = 25;      // frames per second, without --fps
constexpr double kTolerance = 1e-6;  // frames

// Raw samples have no timestamps: --fps sets how many frames --seek skips.
std::unique_ptr<Source> openRaw(const Options& options) {
  double rate = options.rate.value_or(kRawRate);
  if (std::isinf(rate)) rate = kRawRate;
  const auto skipped = static_cast<std::uint64_t>(std::floor(options.seek * rate + kTolerance));
  return makeRawSource(options.source, *options.raw, 1 / rate, skipped);
}

}  // namespace

std::unique_ptr<Source> openSource(const Options& options) {
  if (options.raw) return openRaw(options);
  if (!options.source.empty()) return makeVideoSource(options.source, options.seek);
  const Extent size = options.size.value_or(Extent{kModelWidth, kModelHeight});
  return makeModelSource(size.width, size.height);
}

}  // namespace framesink::play
