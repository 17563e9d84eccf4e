#include "display_helpers.hpp"

#include <algorithm>
#include <ios>

namespace framesink::test {
namespace {

testing::AssertionResult firstDifference(const Image& seen, const Image& wanted) {
  auto failure = testing::AssertionFailure();
  if (seen.width != wanted.width || seen.height != wanted.height) {
    return failure << "the window shows an " << seen << ", expected is an " << wanted;
  }
  const auto [s, w] = std::mismatch(seen.pixels.begin(), seen.pixels.end(), wanted.pixels.begin());
  const auto index = static_cast<int>(s - seen.pixels.begin());
  return failure << "pixel " << index % seen.width << ", " << index / seen.width << " is "
                 << std::hex << *s << ", expected is " << *w;
}

}  // namespace

WindowRequest requestFor(const Opening& opening) {
  return {.title = opening.title,
          .frameSize = opening.frameSize,
          .geometry = {opening.position, opening.windowSize.value_or(opening.frameSize)},
          .useWindowSize = true,
          .fullscreen = opening.fullscreen};
}

std::uint32_t addPlayer(SdlServer& server, const Opening& opening) {
  const Frame black = plainFrame(opening.frameSize, 0);
  return server.addPlayer(black.data(), requestFor(opening));
}

void deliver(SdlServer& server, std::uint32_t player, const Frame& frame) {
  server.deliverFrame(player, frame.data(), frame.size);
}

bool hasWindow(SdlServer& server, std::uint32_t player) {
  return server.windowGeometry(player).has_value();
}

testing::AssertionResult shows(XClient& x, Window window, const Image& picture,
                               std::chrono::milliseconds deadline) {
  Image seen;
  const auto same = [&] {
    seen = x.pixels(window);
    return seen == picture;
  };
  if (waitUntil(same, deadline)) return testing::AssertionSuccess();
  return firstDifference(seen, picture);
}

}  // namespace framesink::test
