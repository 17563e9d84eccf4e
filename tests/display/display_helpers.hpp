// What the tests of the display share.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "display/sdl_server.hpp"
#include "frames.hpp"
#include "support/scoped_variable.hpp"
#include "support/sdl_recorder.hpp"
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

// Runs SDL without a screen and records the calls to it. Such a test checks what the library calls,
// not what a user sees.
class DummyVideoTest : public testing::Test {
 protected:
  ScopedVariable driver{"SDL_VIDEODRIVER", "dummy"};
  SdlRecorder recorder;
};

inline constexpr Size kFrameSize{64, 48};
inline constexpr Position kPlace{60, 80};

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
