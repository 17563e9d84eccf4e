// What framesink-play prints about itself, and the command lines that it rejects.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "player_process.hpp"

namespace framesink::play {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

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
  EXPECT_THAT(outcome.out, StartsWith("framesink-play " FRAMESINK_PLAY_VERSION "\n"));
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
                    WrongLine{"RawWithoutFile", {"--raw", "4x2:uint8:rgb"}, "needs a FILE"},
                    WrongLine{"RawWithKind",
                              {"a.raw", "--raw", "4x2:uint8:rgb", "--kind", "rgb"},
                              "excludes --kind and --type"},
                    WrongLine{"RawWithType",
                              {"a.raw", "--raw", "4x2:uint8:rgb", "--type", "int8"},
                              "excludes --kind and --type"},
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
                    WrongLine{"HugeRate", {"--fps", "1.1e9"}, "--fps"},
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
                    WrongLine{"NamelessFile", {""}, "FILE: its name is empty"},
                    WrongLine{"NamelessFileAmongOthers", {"a.mp4", ""}, "FILE: its name is empty"},
                    WrongLine{"OnePipeTwice", {"-", "a.mp4", "-"}, "standard input"},
                    WrongLine{"Statistics", {"--stats=xml"}, "--stats"},
                    WrongLine{"NegativeHold", {"--hold", "-1"}, "--hold"}),
    [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace framesink::play
