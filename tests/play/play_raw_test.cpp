// framesink-play --raw, which sends the samples unchanged.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>

#include "player_process.hpp"

namespace framesink::play {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

// Bytes that include samples which no picture has, such as infinities, NaNs and booleans above 1.
std::string anyBytes(std::size_t count) {
  std::string text;
  std::uint32_t state = 1;
  for (std::size_t i = 0; i < count; ++i) {
    state = state * 1664525u + 1013904223u;
    text.push_back(static_cast<char>(i % 5 == 0 ? 0xff : state >> 24));
  }
  return text;
}

// ---- Forms ----

struct TypeSize {
  const char* name;
  int id;
  std::size_t bytes;
};

void PrintTo(const TypeSize& type, std::ostream* out) { *out << type.name; }

class PlayRawType : public testing::TestWithParam<TypeSize> {};

TEST_P(PlayRawType, IsSentBitForBit) {
  const Scratch scratch;
  const std::string samples = anyBytes(6 * 4 * 3 * GetParam().bytes);
  const Outcome outcome =
      runPlayer({scratch.write("a.raw", samples), "--raw",
                 std::string("6x4:") + GetParam().name + ":rgb", "--hold", "0"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.frame == samples);
  EXPECT_THAT(outcome.callsOf("description"),
              ElementsAre("description valid=1 fourcc=\"\" inputs=3 components=3 widths=6,6,6 "
                          "heights=4,4,4 type=" +
                          std::to_string(GetParam().id) + " layout=1"));
}

INSTANTIATE_TEST_SUITE_P(Types, PlayRawType,
                         testing::Values(TypeSize{"double", 0, 8}, TypeSize{"single", 1, 4},
                                         TypeSize{"int8", 2, 1}, TypeSize{"uint8", 3, 1},
                                         TypeSize{"int16", 4, 2}, TypeSize{"uint16", 5, 2},
                                         TypeSize{"int32", 6, 4}, TypeSize{"uint32", 7, 4},
                                         TypeSize{"boolean", 8, 1}),
                         [](const auto& instance) { return std::string(instance.param.name); });

struct Form {
  const char* name;
  std::string raw;
  std::string file;
  std::string sent;
  const char* description;
};

void PrintTo(const Form& form, std::ostream* out) { *out << form.name; }

class PlayRawForm : public testing::TestWithParam<Form> {};

TEST_P(PlayRawForm, BecomesColumnsOfPlanes) {
  const Scratch scratch;
  const Outcome outcome =
      runPlayer({scratch.write("a.raw", GetParam().file), "--raw", GetParam().raw, "--hold", "0"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.frame, GetParam().sent);
  EXPECT_THAT(outcome.callsOf("description"), ElementsAre(HasSubstr(GetParam().description)));
}

constexpr const char* kGrey = "fourcc=\"\" inputs=1 components=1 widths=4,0,0 heights=2,0,0";
constexpr const char* kColour = "fourcc=\"\" inputs=3 components=3 widths=4,4,4 heights=2,2,2";
constexpr const char* kPairs = "fourcc=\"YUY2\" inputs=3 components=3 widths=4,2,2 heights=2,2,2";

INSTANTIATE_TEST_SUITE_P(
    Forms, PlayRawForm,
    testing::Values(
        Form{"Intensity", "4x2:uint8:intensity", "aAbBcCdD", "aAbBcCdD", kGrey},
        Form{"PackedIntensity", "4x2:uint8:intensity:packed", "abcdABCD", "aAbBcCdD", kGrey},
        Form{"Rgb", "4x2:uint8:rgb", "rRrRrRrRgGgGgGgGbBbBbBbB", "rRrRrRrRgGgGgGgGbBbBbBbB",
             kColour},
        Form{"PackedRgb", "4x2:uint8:rgb:packed", "1gb2gb3gb4gb5GB6GB7GB8GB",
             "15263748gGgGgGgGbBbBbBbB", kColour},
        Form{"Ycbcr", "4x2:uint8:ycbcr422", "yYyYyYyYb1B2r3R4", "yYyYyYyYb1B2r3R4", kPairs},
        Form{"PackedYcbcr", "4x2:uint8:ycbcr422:packed", "1b2r3c4s5B6R7C8S", "15263748bBcCrRsS",
             kPairs},
        Form{"PackedWords", "2x2:uint16:intensity:packed", "aabbAABB", "aaAAbbBB",
             "widths=2,0,0 heights=2,0,0"}),
    [](const auto& instance) { return instance.param.name; });

TEST(PlayRaw, FollowsTheOtherLayout) {
  const Scratch scratch;
  const Outcome outcome = runPlayer({scratch.write("a.raw", "aAbBcCdD"), "--raw",
                                     "4x2:uint8:intensity", "--layout", "row", "--hold", "0"});
  EXPECT_EQ(outcome.frame, "abcdABCD");
}

TEST(PlayRaw, ShowsWhatWasDumped) {
  const Scratch scratch;
  const std::string dump = (scratch / "frame").string();
  const Outcome model = runPlayer({"--kind", "ycbcr422", "--type", "single", "--size", "32x16",
                                   "--frames", "3", "--fps", "max", "--dump-frame", dump});
  const Outcome again = runPlayer({dump, "--raw", "32x16:single:ycbcr422", "--hold", "0"});
  EXPECT_THAT(model.frame, SizeIs(32 * 16 * 2 * sizeof(float)));
  EXPECT_TRUE(again.frame == model.frame);
}

// ---- The course of a stream ----

TEST(PlayRaw, OnStandardInputIsReadFrameByFrame) {
  const Scratch scratch;
  const Outcome outcome = runPlayer({"-", "--raw", "2x2:uint8:intensity", "--fps", "max"},
                                    Setting{.input = scratch.write("a.raw", "aaaabbbbcccc")});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(3));
  EXPECT_EQ(outcome.frame, "cccc");
  EXPECT_THAT(outcome.callsOf("libCreate"), ElementsAre(HasSubstr("title=\"standard input\"")));
}

TEST(PlayRaw, OnStandardInputIsReadBesideAFolderOfThatName) {
  const Scratch scratch;
  std::filesystem::create_directory(scratch / "-");
  const Outcome outcome = runPlayer(
      {"-", "--raw", "2x2:uint8:intensity", "--hold", "0"},
      Setting{.input = scratch.write("a.raw", "abcd"), .folder = (scratch / "").string()});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.frame, "abcd");
}

TEST(PlayRaw, Has25FramesPerSecond) {
  const Scratch scratch;
  const Outcome outcome =
      runPlayer({scratch.write("a.raw", anyBytes(4 * 15)), "--raw", "2x2:uint8:intensity"});
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(15));
  EXPECT_THAT(outcome.seconds, AllOf(Ge(0.6), Le(5)));
}

TEST(PlayRaw, CutWithinAFrameIsPlayedAsFarAsItGoesThenTold) {
  const Scratch scratch;
  const std::string path = scratch.write("a.raw", anyBytes(4 * 3 + 1));
  const Outcome outcome = runPlayer({path, "--raw", "2x2:uint8:intensity", "--fps", "max"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(3));
  EXPECT_THAT(outcome.err, EndsWith("\nframesink-play: " + path +
                                    ": its last frame is cut short, 1 of 4 bytes\n"));
  EXPECT_EQ(outcome.lastCall(), "unloaded");
}

void expectRefused(const std::string& path, const std::string& told) {
  const Outcome outcome = runPlayer({path, "--raw", "2x2:uint8:intensity"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "framesink-play: " + path + ": " + told + "\n");
  EXPECT_THAT(outcome.callsOf("libCreate"), IsEmpty());
}

TEST(PlayRaw, WithoutOneWholeFrameIsTold) {
  const Scratch scratch;
  expectRefused(scratch.write("empty.raw", ""), "is empty");
  expectRefused(scratch.write("short.raw", "abc"), "its last frame is cut short, 3 of 4 bytes");
}

TEST(PlayRaw, ThatCannotBeReadIsTold) {
  const Scratch scratch;
  expectRefused("/nonexistent/a.raw", "No such file or directory");
  expectRefused((scratch / "").string(), "is a directory");
}

// Uses a pipe whose writer stays open and sends nothing.
TEST(PlayRaw, WaitingForAPipeEndsByASignal) {
  const Scratch scratch;
  const std::string pipe = (scratch / "pipe").string();
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const int end = open(pipe.c_str(), O_RDWR);
  ASSERT_EQ(write(end, "aaaa", 4), 4);
  const auto interrupt = [sent = false](pid_t player,
                                        const std::vector<std::string>& calls) mutable {
    const bool playing = std::ranges::any_of(
        calls, [](const std::string& call) { return call.starts_with("libUpdate"); });
    if (playing && !sent) sent = kill(player, SIGINT) == 0;
  };
  const Outcome outcome = runPlayer({"-", "--raw", "2x2:uint8:intensity"},
                                    Setting{.input = pipe, .meanwhile = interrupt});
  close(end);
  EXPECT_EQ(outcome.signal, SIGINT);
  EXPECT_EQ(outcome.lastCall(), "unloaded");
}

}  // namespace
}  // namespace framesink::play
