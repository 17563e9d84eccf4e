// What the tests of the display share.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "display/sdl_server.hpp"
#include "support/dummy_video.hpp"
#include "support/frames.hpp"
#include "support/x_client.hpp"

namespace framesink {

// GoogleTest prints sizes and positions with these when a test fails.
inline void PrintTo(const Size& size, std::ostream* out) {
  *out << size.width << "x" << size.height;
}
inline void PrintTo(const Position& position, std::ostream* out) {
  *out << static_cast<std::int32_t>(position.x) << "," << static_cast<std::int32_t>(position.y);
}

}  // namespace framesink

namespace framesink::test {

inline constexpr Size kFrameSize{64, 48};
inline constexpr Position kPlace{60, 80};

// Frame sizes that no player has: as many pixels, or one side shorter or longer.
inline constexpr std::array kOtherSizes{
    Size{kFrameSize.height, kFrameSize.width}, Size{kFrameSize.width, kFrameSize.height - 1},
    Size{kFrameSize.width, kFrameSize.height + 1}, Size{kFrameSize.width - 1, kFrameSize.height},
    Size{kFrameSize.width + 1, kFrameSize.height}};

// The window that a test requests.
struct Opening {
  std::string title = "player";
  Size frameSize = kFrameSize;
  std::optional<Size> windowSize{};  // nullopt: the frame's size
  Position position = kPlace;
  bool fullscreen = false;
};

WindowRequest requestFor(const Opening& opening = {});

// Adds a player that first shows a black frame.
std::uint32_t addPlayer(SdlServer& server, const Opening& opening = {});

void deliver(SdlServer& server, std::uint32_t player, const Frame& frame);

// Waits until the player's window has been made; false if it never will be.
bool hasWindow(SdlServer& server, std::uint32_t player);

// Waits until the window shows `picture` and nothing else.
testing::AssertionResult shows(XClient& x, Window window, const Image& picture,
                               std::chrono::milliseconds deadline = kDeadline);

}  // namespace framesink::test
