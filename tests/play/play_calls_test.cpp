// The calls that framesink-play makes to the library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "player_process.hpp"

namespace framesink::play {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

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

TEST(PlayOptions, PlaceWindowsFarOutNoFartherThanTheyCan) {
  const Outcome outcome = runPlayer({"--kind", "intensity", "--windows", "4", "--frames", "1",
                                     "--position", "2147483600,2147483647"});
  EXPECT_THAT(outcome.callsOf("libCreate"), ElementsAre(HasSubstr("x=2147483600 y=2147483647 "),
                                                        HasSubstr("x=2147483647 y=2147483647 "),
                                                        HasSubstr("x=2147483647 y=2147483647 "),
                                                        HasSubstr("x=2147483600 y=2147483647 ")));
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

// The last frame that a run of the model sends. Every run computes the same frames.
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

}  // namespace
}  // namespace framesink::play
