#include "host/conversion_twin.hpp"

#include <algorithm>

namespace framesink::play {
namespace {

constexpr std::uint64_t kEvery = 8;

ConversionTwin::Duration timed(BlockWindow& window, const FramePlanes& planes) {
  const auto before = std::chrono::steady_clock::now();
  window.update(planes);
  return std::chrono::steady_clock::now() - before;
}

WindowSettings closedWindow(const std::string& name) {
  WindowSettings settings;
  settings.name = name;
  settings.open = false;
  return settings;
}

}  // namespace

ConversionTwin::ConversionTwin(const Library& library, const std::string& name,
                               const InputDescription& description)
    : twin_(std::make_unique<BlockWindow>(library, closedWindow(name), description)) {}

ConversionTwin::Duration ConversionTwin::update(BlockWindow& window, const FramePlanes& planes) {
  const std::uint64_t number = frames_++;
  // The first frame finds memory that nobody has written to yet: it is not measured.
  if (number == 0) twin_->update(planes);
  if (number % kEvery != 1) return timed(window, planes);
  const bool twinFirst = number / kEvery % 2 == 1;
  if (twinFirst) converting_.add(timed(*twin_, planes));
  const Duration whole = timed(window, planes);
  if (!twinFirst) converting_.add(timed(*twin_, planes));
  whole_.add(whole);
  return whole;
}

std::optional<double> ConversionTwin::share() const {
  if (whole_.count() == 0) return std::nullopt;
  return std::min(converting_.quantile(0.5) / whole_.quantile(0.5), 1.0);
}

}  // namespace framesink::play
