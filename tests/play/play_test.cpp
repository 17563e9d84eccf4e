// framesink-play and the library: what it asks for, how long it plays, how it ends.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>

#include "player_process.hpp"

namespace framesink::play {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

// The player's errors are one line that begins with its name.
void expectOneLine(const Outcome& outcome, const std::string& part) {
  EXPECT_THAT(outcome.err, AllOf(StartsWith("framesink-play: "), HasSubstr(part)));
  EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
}

Outcome runIn(const Environment& environment, const Arguments& arguments) {
  return runPlayer(arguments, Setting{.environment = environment});
}

// ---- Help, version, usage ----

TEST(PlayHelp, NamesEveryOptionAndExitStatus) {
  const Outcome outcome = runPlayer({"--help"});
  EXPECT_EQ(outcome.status, 0);
  for (const char* option :
       {"FILE",     "--raw",      "--kind",       "--type",       "--layout", "--windows",
        "--sync",   "--size",     "--position",   "--fullscreen", "--title",  "--fps",
        "--frames", "--duration", "--seek",       "--loop",       "--hold",   "--stats",
        "--doctor", "--library",  "--dump-frame", "--version",    "--help",   "\n  0  ",
        "\n  1  ",  "\n  2  ",    "\n  3  ",      "\n  4  "}) {
    EXPECT_THAT(outcome.out, HasSubstr(option));
  }
  EXPECT_THAT(outcome.calls, IsEmpty());
}

TEST(PlayVersion, TellsPlayerAndLibrary) {
  const Outcome outcome = runPlayer({"--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, StartsWith("framesink-play " PLAY_VERSION "\n"));
  EXPECT_THAT(outcome.out, HasSubstr("framesink 7.8.9 of Feb  3 2021, " STUB_LIBRARY "\n"));
}

struct WrongLine {
  const char* name;
  Arguments arguments;
  const char* told;
};

void PrintTo(const WrongLine& line, std::ostream* out) { *out << line.name; }

class PlayUsage : public testing::TestWithParam<WrongLine> {};

TEST_P(PlayUsage, IsRefusedInOneLineWithStatus2) {
  const Outcome outcome = runPlayer(GetParam().arguments);
  EXPECT_EQ(outcome.status, 2);
  expectOneLine(outcome, GetParam().told);
  EXPECT_THAT(outcome.calls, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Lines, PlayUsage,
    testing::Values(WrongLine{"UnknownOption", {"--nonsense"}, "--nonsense"},
                    WrongLine{"Kind", {"--kind", "cmyk"}, "--kind"},
                    WrongLine{"Type", {"--type", "int64"}, "--type"},
                    WrongLine{"Layout", {"--layout", "diagonal"}, "--layout"},
                    WrongLine{"RawWithoutKind", {"a.raw", "--raw", "4x2:uint8"}, "--raw"},
                    WrongLine{"RawType", {"a.raw", "--raw", "4x2:int64:rgb"}, "--raw"},
                    WrongLine{"RawKind", {"a.raw", "--raw", "4x2:int8:cmyk"}, "--raw"},
                    WrongLine{"RawOrder", {"a.raw", "--raw", "4x2:int8:rgb:loose"}, "--raw"},
                    WrongLine{"RawOfNothing", {"a.raw", "--raw", "0x2:int8:rgb"}, "--raw"},
                    WrongLine{"HugeRaw", {"a.raw", "--raw", "65536x65536:int8:rgb"}, "--raw"},
                    WrongLine{
                        "RawPairsOfOddWidth", {"a.raw", "--raw", "3x2:int8:ycbcr422"}, "--raw"},
                    WrongLine{"RawWithoutFile", {"--raw", "4x2:uint8:rgb"}, "which FILE"},
                    WrongLine{"RawWithKind",
                              {"a.raw", "--raw", "4x2:uint8:rgb", "--kind", "rgb"},
                              "names kind and type itself"},
                    WrongLine{"RawWithType",
                              {"a.raw", "--raw", "4x2:uint8:rgb", "--type", "int8"},
                              "names kind and type itself"},
                    WrongLine{"NoWindow", {"--windows", "0"}, "--windows"},
                    WrongLine{"TooManyWindows", {"--windows", "65"}, "--windows"},
                    WrongLine{"SizeOfOneNumber", {"--size", "640"}, "--size"},
                    WrongLine{"SizeOfNothing", {"--size", "0x480"}, "--size"},
                    WrongLine{"HugeSize", {"--size", "640x20001"}, "--size"},
                    WrongLine{"SizeWithTail", {"--size", "640x480x3"}, "--size"},
                    WrongLine{"TinyModel", {"--size", "15x300"}, "--size"},
                    WrongLine{"HugeModel", {"--size", "300x4097"}, "--size"},
                    WrongLine{"Position", {"--position", "10"}, "--position"},
                    WrongLine{"ZeroRate", {"--fps", "0"}, "--fps"},
                    WrongLine{"WordRate", {"--fps", "fast"}, "--fps"},
                    WrongLine{"InfiniteRate", {"--fps", "inf"}, "--fps"},
                    WrongLine{"NoFrames", {"--frames", "0"}, "--frames"},
                    WrongLine{"NegativeFrames", {"--frames", "-3"}, "--frames"},
                    WrongLine{"NegativeDuration", {"--duration", "-1"}, "--duration"},
                    WrongLine{"EndlessDuration", {"--duration", "nan"}, "--duration"},
                    WrongLine{"NegativeSeek", {"a.mp4", "--seek", "-1"}, "--seek"},
                    WrongLine{"SeekInTheModel", {"--seek", "1"}, "need a FILE"},
                    WrongLine{"LoopOfTheModel", {"--loop"}, "need a FILE"},
                    WrongLine{"LoopOfAPipe", {"-", "--loop"}, "standard input"},
                    WrongLine{"Statistics", {"--stats=xml"}, "--stats"},
                    WrongLine{"NegativeHold", {"--hold", "-1"}, "--hold"}),
    [](const auto& instance) { return instance.param.name; });

// ---- What the library is asked for ----

TEST(PlayDemo, OpensThreeWindowsSideBySide) {
  const Outcome outcome = runPlayer({"--frames", "1"});
  EXPECT_EQ(outcome.status, 0);
  const char* rest = " useSize=0 size=2147483647x2147483647 conversion=0 buffers=0 sync=0";
  EXPECT_THAT(
      outcome.callsOf("libCreate"),
      ElementsAre(std::string("libCreate name=\"framesink-play 1\" title=\"framesink: RGB double\" "
                              "fullscreen=0 open=1 x=20 y=60") +
                      rest,
                  std::string("libCreate name=\"framesink-play 2\" title=\"framesink: intensity "
                              "single\" fullscreen=0 open=1 x=440 y=60") +
                      rest,
                  std::string("libCreate name=\"framesink-play 3\" title=\"framesink: YUY2 uint8\" "
                              "fullscreen=0 open=1 x=860 y=60") +
                      rest));
  EXPECT_THAT(
      outcome.callsOf("description"),
      ElementsAre("description valid=1 fourcc=\"\" inputs=3 components=3 widths=400,400,400 "
                  "heights=300,300,300 type=0 layout=1",
                  "description valid=1 fourcc=\"\" inputs=1 components=1 widths=400,0,0 "
                  "heights=300,0,0 type=1 layout=1",
                  "description valid=1 fourcc=\"YUY2\" inputs=3 components=3 widths=400,200,200 "
                  "heights=300,300,300 type=3 layout=1"));
}

TEST(PlayOptions, ReachTheLibrary) {
  const Outcome outcome = runPlayer(
      {"--kind", "rgb", "--type", "int16", "--layout", "row", "--windows", "2", "--sync", "--size",
       "32x16", "--position", "-7,9", "--fullscreen", "--title", "Spirals", "--frames", "1"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libCreate"),
              ElementsAre("libCreate name=\"framesink-play 1\" title=\"Spirals\" fullscreen=1 "
                          "open=1 x=-7 y=9 useSize=1 size=32x16 conversion=0 buffers=0 sync=1",
                          "libCreate name=\"framesink-play 2\" title=\"Spirals (2)\" fullscreen=0 "
                          "open=1 x=45 y=9 useSize=1 size=32x16 conversion=0 buffers=0 sync=1"));
  EXPECT_THAT(outcome.callsOf("description"),
              Each("description valid=1 fourcc=\"\" inputs=3 components=3 widths=32,32,32 "
                   "heights=16,16,16 type=4 layout=0"));
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(2));
}

TEST(PlayOptions, LeaveASingleWindowsPlaceToTheSystem) {
  const Outcome outcome = runPlayer({"--kind", "intensity", "--frames", "1"});
  EXPECT_THAT(outcome.callsOf("libCreate"), ElementsAre(HasSubstr("x=536805376 y=536805376 ")));
}

TEST(PlayOptions, PlaceWindowsThreeInARow) {
  const Outcome outcome =
      runPlayer({"--kind", "intensity", "--windows", "5", "--size", "500x200", "--frames", "1"});
  EXPECT_THAT(
      outcome.callsOf("libCreate"),
      ElementsAre(HasSubstr("x=20 y=60 "), HasSubstr("x=440 y=60 "), HasSubstr("x=860 y=60 "),
                  HasSubstr("x=20 y=310 "), HasSubstr("x=440 y=310 ")));
}

TEST(PlayOptions, KindAloneShowsTheModelInDoubles) {
  const Outcome outcome = runPlayer({"--kind", "intensity", "--frames", "1"});
  EXPECT_THAT(outcome.callsOf("libCreate"), ElementsAre(HasSubstr("framesink: intensity double")));
}

TEST(PlayOptions, TypeAloneShowsTheModelInColour) {
  const Outcome outcome = runPlayer({"--type", "uint32", "--frames", "1"});
  EXPECT_THAT(outcome.callsOf("libCreate"), ElementsAre(HasSubstr("framesink: RGB uint32")));
}

TEST(PlayModel, OfOddWidthLosesAColumnInYcbcr) {
  const Outcome outcome = runPlayer({"--kind", "ycbcr422", "--size", "33x17", "--frames", "1"});
  EXPECT_THAT(outcome.callsOf("description"),
              ElementsAre(HasSubstr("widths=32,16,16 heights=17,17,17 type=0 layout=1")));
}

// The model is the same in every run.
std::string modelFrame(const std::string& type) {
  return runPlayer({"--kind", "intensity", "--type", type, "--size", "64x50", "--frames", "20",
                    "--fps", "max"})
      .frame;
}

TEST(PlayModel, IsRoundedToTheNearestInteger) {
  const std::string exact = modelFrame("double");
  const std::string rounded = modelFrame("uint8");
  ASSERT_THAT(exact, SizeIs(64 * 50 * sizeof(double)));
  ASSERT_THAT(rounded, SizeIs(64 * 50));
  for (std::size_t i = 0; i < rounded.size(); ++i) {
    double sample;
    std::memcpy(&sample, &exact[i * sizeof sample], sizeof sample);
    ASSERT_NEAR(sample * 255, static_cast<unsigned char>(rounded[i]), 0.5000001) << i;
  }
}

class PlayModelForm : public testing::TestWithParam<std::tuple<std::string, std::string>> {};

TEST_P(PlayModelForm, IsDumpedAsItWasSent) {
  const auto& [kind, type] = GetParam();
  const Scratch scratch;
  const Outcome outcome =
      runPlayer({"--kind", kind, "--type", type, "--size", "64x50", "--frames", "20", "--fps",
                 "max", "--dump-frame", (scratch / "frame").string()});
  EXPECT_EQ(outcome.status, 0);
  std::map<std::string, std::size_t> bytes{{"double", 8}, {"single", 4}, {"int16", 2},
                                           {"uint16", 2}, {"int32", 4},  {"uint32", 4}};
  const std::size_t samples = 64 * 50 * (kind == "rgb" ? 3 : kind == "ycbcr422" ? 2 : 1);
  EXPECT_EQ(outcome.frame.size(), samples * std::max<std::size_t>(bytes[type], 1));
  EXPECT_NE(outcome.frame.find_first_not_of(outcome.frame[0]), std::string::npos);
  EXPECT_TRUE(scratch.read("frame") == outcome.frame);
  const std::string planes = kind == "intensity" ? "1" : "3";
  EXPECT_THAT(
      outcome.callsOf("libUpdate"),
      AllOf(SizeIs(20), Each(StartsWith("libUpdate size=ffffffff,ffffffff planes=" + planes))));
}

INSTANTIATE_TEST_SUITE_P(KindsAndTypes, PlayModelForm,
                         testing::Combine(testing::Values("rgb", "intensity", "ycbcr422"),
                                          testing::Values("double", "single", "int8", "uint8",
                                                          "int16", "uint16", "int32", "uint32",
                                                          "boolean")),
                         [](const auto& instance) {
                           return std::get<0>(instance.param) + "_" + std::get<1>(instance.param);
                         });

// ---- The course of a run ----

TEST(PlayRun, CallsInAHostsOrderAndUnloads) {
  const Outcome outcome = runPlayer({"--type", "uint8", "--frames", "2", "--fps", "max"});
  std::vector<std::string> names;
  for (const std::string& call : outcome.calls) names.push_back(call.substr(0, call.find(' ')));
  EXPECT_THAT(names, ElementsAre("libCreate", "description", "libStart", "libUpdate", "libUpdate",
                                 "libTerminate", "libDestroy", "unloaded"));
}

TEST(PlayRun, SumsUpInOneLineOnStandardError) {
  const Outcome outcome = runPlayer({"--frames", "5", "--fps", "max"});
  EXPECT_THAT(outcome.err,
              testing::MatchesRegex("framesink-play: 5 frames, [0-9.]+ fps, host time per frame "
                                    "[0-9.]+ ms median, [0-9.]+ ms p99\n"));
  EXPECT_THAT(outcome.out, IsEmpty());
}

TEST(PlayRun, KeepsALiveLineOnATerminal) {
  const Outcome outcome = runPlayer({"--duration", "1.2"}, Setting{.terminal = true});
  // The last line begins with one, too, and the terminal ends it with another.
  const auto rewrites = std::ranges::count(outcome.err, '\r') - 2;
  EXPECT_THAT(rewrites, AllOf(Ge(2), Le(1 + 5 * outcome.seconds))) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("fps  host "));
  EXPECT_THAT(outcome.err, HasSubstr("\rframesink-play: "));
}

TEST(PlayRun, KeepsTheFramesPerSecondAskedFor) {
  const Outcome outcome = runPlayer({"--type", "uint8", "--frames", "10", "--fps", "20"});
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(10));
  EXPECT_THAT(outcome.seconds, AllOf(Ge(0.5), Le(5.0)));
}

TEST(PlayRun, DoesNotRaceAfterALongDelay) {
  const Outcome outcome =
      runIn({{"STUB_SLOW_START", "1"}}, {"--type", "uint8", "--frames", "6", "--fps", "10"});
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(6));
  EXPECT_THAT(outcome.seconds, Ge(1.5));
}

TEST(PlayRun, EndsAfterItsDuration) {
  const Outcome outcome = runPlayer({"--type", "uint8", "--duration", "0.5", "--fps", "10"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(5));
  EXPECT_THAT(outcome.seconds, Ge(0.5));
}

TEST(PlayRun, HoldsTheLastFrame) {
  const Outcome outcome = runPlayer({"--type", "uint8", "--frames", "1", "--hold", "0.5"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(1));
  EXPECT_THAT(outcome.seconds, Ge(0.5));
}

TEST(PlayRun, RepeatsTheHeldFrameForSynchronousWindows) {
  const Scratch scratch;
  const Outcome outcome = runPlayer({"--type", "uint8", "--size", "16x16", "--kind", "intensity",
                                     "--frames", "2", "--hold", "0.5", "--sync"});
  const auto updates = outcome.callsOf("libUpdate");
  EXPECT_THAT(updates.size(), AllOf(Ge(8u), Le(20u)));
  EXPECT_NE(updates[0], updates[1]);
  EXPECT_EQ(updates[1], updates.back());
  EXPECT_THAT(outcome.err, HasSubstr(" 2 frames"));
}

TEST(PlayRun, HoldsUntilTheWindowsAreClosed) {
  const Outcome outcome =
      runPlayer({"--type", "uint8", "--frames", "1", "--hold"}, Setting{.closeAfter = 0.5});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(1));
  EXPECT_THAT(outcome.seconds, AllOf(Ge(0.5), Le(5)));
}

TEST(PlayRun, EndsAHoldOfSecondsWhenTheWindowsAreClosed) {
  const Outcome outcome =
      runPlayer({"--type", "uint8", "--frames", "1", "--hold", "50"}, Setting{.closeAfter = 0.1});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.seconds, Le(10));
}

TEST(PlayRun, EndsWhenAllWindowsAreClosed) {
  const Outcome outcome = runPlayer({}, Setting{.closeAfter = 0.3});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate").size(), Ge(6u));
  EXPECT_THAT(outcome.callsOf("libDestroy"), SizeIs(3));
  EXPECT_EQ(outcome.lastCall(), "unloaded");
}

TEST(PlayRun, WaitingForAFrameEndsWhenAllWindowsAreClosed) {
  const Outcome outcome = runPlayer({"--fps", "0.02"}, Setting{.closeAfter = 0.1});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.seconds, Le(10));
}

TEST(PlayRun, SendsNothingToAClosedWindow) {
  // Open when first asked, closed when asked before the frame.
  const Outcome outcome = runIn({{"STUB_CLOSE_AFTER", "2"}}, {"--type", "uint8", "--frames", "1"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), IsEmpty());
}

// ---- Signals ----

class PlaySignal : public testing::TestWithParam<int> {};

// Sends a signal once a frame has come.
std::function<void(pid_t, const std::vector<std::string>&)> signalAfterFirstFrame(int number) {
  return [number, sent = false](pid_t player, const std::vector<std::string>& calls) mutable {
    const bool playing = std::ranges::any_of(
        calls, [](const std::string& call) { return call.starts_with("libUpdate"); });
    if (playing && !sent) sent = kill(player, number) == 0;
  };
}

TEST_P(PlaySignal, CleansUpAndDiesByIt) {
  const Outcome outcome = runPlayer({}, Setting{.meanwhile = signalAfterFirstFrame(GetParam())});
  EXPECT_EQ(outcome.signal, GetParam());
  EXPECT_THAT(outcome.callsOf("libDestroy"), SizeIs(3));
  EXPECT_EQ(outcome.lastCall(), "unloaded");
}

TEST_P(PlaySignal, EndsAHold) {
  const Outcome outcome = runPlayer({"--frames", "1", "--hold"},
                                    Setting{.meanwhile = signalAfterFirstFrame(GetParam())});
  EXPECT_EQ(outcome.signal, GetParam());
  EXPECT_EQ(outcome.lastCall(), "unloaded");
}

INSTANTIATE_TEST_SUITE_P(Signals, PlaySignal, testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto& instance) {
                           return std::string(sigabbrev_np(instance.param));
                         });

TEST(PlayHangup, StaysIgnoredUnderNohup) {
  const Outcome outcome =
      runPlayer({"--duration", "0.5"},
                Setting{.ignored = {SIGHUP}, .meanwhile = signalAfterFirstFrame(SIGHUP)});
  EXPECT_EQ(outcome.status, 0);
}

TEST(PlayInterrupt, EndsThePlayerInAShellsBackground) {
  const Outcome outcome =
      runPlayer({}, Setting{.ignored = {SIGINT}, .meanwhile = signalAfterFirstFrame(SIGINT)});
  EXPECT_EQ(outcome.signal, SIGINT);
}

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
  EXPECT_THAT(outcome.err, HasSubstr("framesink-play: the library says: stub trouble!!!"));
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

// A socket that somebody listens at.
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
  const Listener server(std::string(1, '\0') + "/tmp/.X11-unix/X64998");
  EXPECT_EQ(runIn(displays(":64998.0", ""), {"--frames", "1"}).status, 0);
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
