#include "host/conversion_twin.hpp"

#include <algorithm>

namespace framesink::play {
namespace {

constexpr std::uint64_t kEvery = 8;

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

BlockWindow::Duration ConversionTwin::update(BlockWindow& window, const FramePlanes& planes) {
  const std::uint64_t number = frames_++;
  // The first frame is not measured, because it touches its memory for the first time.
  if (number == 0) twin_->update(planes);
  if (number % kEvery != 1) return window.update(planes);
  const bool twinFirst = number / kEvery % 2 == 1;
  if (twinFirst) converting_.add(twin_->update(planes));
  const BlockWindow::Duration whole = window.update(planes);
  if (!twinFirst) converting_.add(twin_->update(planes));
  whole_.add(whole);
  return whole;
}

std::optional<double> ConversionTwin::share() const {
  if (whole_.count() == 0) return std::nullopt;
  return std::min(converting_.quantile(kMedian) / whole_.quantile(kMedian), 1.0);
}

}  // namespace framesink::play
