// If framesink-play cannot use a library, a display or a file, it prints one line and exits with
// the documented status.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>

#include "player_process.hpp"

namespace framesink::play {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// ---- Library trouble ----

Outcome runWithLibrary(const std::string& library) {
  return runPlayer({"--frames", "1", "--library", library}, Setting{.stubLibrary = false});
}

TEST(PlayLibrary, ThatIsMissingEndsWithStatus3) {
  const Outcome outcome = runWithLibrary("/nonexistent/libframesink.so.1");
  EXPECT_EQ(outcome.status, 3);
  expectOneLine(outcome, "/nonexistent/libframesink.so.1");
}

TEST(PlayLibrary, ThatIsNoLibraryEndsWithStatus3) {
  const Scratch scratch;
  const std::string path = scratch.write("text.so", "not a library at all\n");
  const Outcome outcome = runWithLibrary(path);
  EXPECT_EQ(outcome.status, 3);
  expectOneLine(outcome, path);
}

TEST(PlayLibrary, ThatLacksAFunctionEndsWithStatus3) {
  const Outcome outcome = runWithLibrary(STUB_WITHOUT_UPDATE);
  EXPECT_EQ(outcome.status, 3);
  expectOneLine(outcome, "is not framesink: it has no libUpdate");
}

class PlayComplaint : public testing::TestWithParam<std::string> {};

TEST_P(PlayComplaint, IsToldWithStatus3) {
  const Outcome outcome = runIn({{"STUB_COMPLAINT", GetParam()}}, {"--type", "uint8"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, HasSubstr("framesink-play: the library reports: stub trouble!!!"));
  EXPECT_THAT(outcome.err, EndsWith("!!!\n"));
  EXPECT_THAT(outcome.callsOf("libDestroy"), SizeIs(GetParam() == "libCreate" ? 0 : 1));
  EXPECT_EQ(outcome.lastCall(), "unloaded");
}

INSTANTIATE_TEST_SUITE_P(Functions, PlayComplaint,
                         testing::Values("libCreate", "libStart", "libUpdate"),
                         [](const auto& instance) { return instance.param; });

// ---- No display ----

Environment displays(const std::string& x, const std::string& wayland) {
  return {{"SDL_VIDEODRIVER", ""}, {"DISPLAY", x}, {"WAYLAND_DISPLAY", wayland}};
}

TEST(PlayDisplay, ThatIsNotNamedEndsWithStatus4) {
  const Outcome outcome = runIn(displays("", ""), {"--frames", "1"});
  EXPECT_EQ(outcome.status, 4);
  expectOneLine(outcome, "no display: set DISPLAY or WAYLAND_DISPLAY (or run under xvfb-run)");
  EXPECT_THAT(outcome.callsOf("libCreate"), IsEmpty());
}

TEST(PlayDisplay, ThatDoesNotAnswerEndsWithStatus4) {
  for (const char* dead : {":64999", "localhost:999.0", "nonsense"}) {
    const Outcome outcome = runIn(displays(dead, ""), {"--frames", "1"});
    EXPECT_EQ(outcome.status, 4) << dead;
    expectOneLine(outcome, std::string("no display: nothing answers at DISPLAY=") + dead);
  }
}

TEST(PlayDisplay, OfWaylandThatDoesNotAnswerEndsWithStatus4) {
  const Outcome outcome = runIn(displays("", "/nonexistent/wayland-7"), {"--frames", "1"});
  EXPECT_EQ(outcome.status, 4);
  expectOneLine(outcome, "no display: nothing answers at WAYLAND_DISPLAY=/nonexistent/wayland-7");
}

// A socket that accepts connections.
class Listener {
 public:
  explicit Listener(const std::string& path) : socket_(socket(AF_UNIX, SOCK_STREAM, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.data(), path.size());
    const auto bytes = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    EXPECT_EQ(bind(socket_, reinterpret_cast<const sockaddr*>(&address), bytes), 0);
    EXPECT_EQ(listen(socket_, 5), 0);
  }
  ~Listener() { close(socket_); }

 private:
  int socket_;
};

TEST(PlayDisplay, ThatAnswersIsUsed) {
  const std::string number = std::to_string(100'000 + getpid());  // all processes share these names
  const Listener server(std::string(1, '\0') + "/tmp/.X11-unix/X" + number);
  EXPECT_EQ(runIn(displays(":" + number + ".0", ""), {"--frames", "1"}).status, 0);
}

TEST(PlayDisplay, OfWaylandThatAnswersIsUsed) {
  const Scratch scratch;
  const Listener server((scratch / "wayland-7").string());
  Environment environment = displays("", "wayland-7");
  environment["XDG_RUNTIME_DIR"] = (scratch / "").string();
  EXPECT_EQ(runIn(environment, {"--frames", "1"}).status, 0);
}

TEST(PlayDisplay, WithoutAnyWindowEndsWithStatus4) {
  const Outcome outcome = runIn({{"STUB_CLOSE_AFTER", "0"}}, {});
  EXPECT_EQ(outcome.status, 4);
  expectOneLine(outcome, "no display: the library opened no window");
  EXPECT_EQ(outcome.lastCall(), "unloaded");
}

// ---- Dump ----

TEST(PlayDump, ThatCannotBeWrittenEndsWithStatus1) {
  const Outcome outcome = runPlayer({"--frames", "1", "--dump-frame", "/nonexistent/frame"});
  EXPECT_EQ(outcome.status, 1);
  expectOneLine(outcome, "/nonexistent/frame: cannot be written");
}

}  // namespace
}  // namespace framesink::play
