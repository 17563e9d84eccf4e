// The statistics that framesink-play --stats prints.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include "player_process.hpp"

namespace framesink::play {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::Le;
using testing::MatchesRegex;
using testing::SizeIs;

// The number after the first `key` that follows the first `section`; -1 if there is none.
double valueOf(const std::string& text, const std::string& section, const std::string& key) {
  const auto from = text.find("\"" + section + "\":");
  const auto at = from == std::string::npos ? from : text.find("\"" + key + "\":", from);
  return at == std::string::npos ? -1 : std::atof(text.c_str() + at + key.size() + 3);
}

double valueOf(const std::string& text, const std::string& key) { return valueOf(text, key, key); }

TEST(PlayStats, AreToldInWords) {
  const Outcome outcome =
      runPlayer({"--type", "int8", "--size", "32x16", "--frames", "10", "--fps", "max", "--stats"});
  EXPECT_EQ(outcome.status, 0);
  const std::string times = "[0-9.]+ ms median, [0-9.]+ ms p99, [0-9.]+ ms max\n";
  EXPECT_THAT(outcome.out, MatchesRegex("model: rgb int8 32x16, 1 window\n"
                                        "  sent        10 frames in [0-9.]+ s, [0-9.]+ a second\n"
                                        "  late        " +
                                        times + "  host time   " + times +
                                        "  conversion  [0-9]+ % of the host time\n"));
}

TEST(PlayStats, AreToldToPrograms) {
  const Scratch scratch;
  const std::string file = scratch.write("a\"\xc3\xa9.raw", "abcdefgh");
  const Outcome outcome =
      runPlayer({"--stats=json", "--fps", "max", file, "--raw", "2x2:uint8:intensity", "--windows",
                 "2", file, "--raw", "1x1:uint8:intensity"});
  for (const char* part :
       {R"({"shown":[{"source":")", R"(a\"\u00c3\u00a9.raw","kind":"intensity","type":"uint8",)",
        R"("width":2,"height":2,"windows":2,"frames":2,"seconds":)", R"(},{"source":")",
        R"("width":1,"height":1,"windows":1,"frames":8,"seconds":)"}) {
    EXPECT_THAT(outcome.out, HasSubstr(part));
  }
  const std::string times = R"(\{"median":[0-9.]+,"p99":[0-9.]+,"max":[0-9.]+})";
  EXPECT_THAT(outcome.out,
              MatchesRegex(R"(.*"frames":8,"seconds":[0-9.]+,"fps":[0-9.]+,"late_ms":)" + times +
                           R"(,"host_ms":)" + times + R"(,"conversion_share":[0-9.]+\}\]\}.)"));
}

TEST(PlayStats, OfOneFrameKnowNoShare) {
  const Outcome outcome = runPlayer({"--type", "int8", "--frames", "1", "--stats=json"});
  EXPECT_THAT(outcome.out, HasSubstr("\"fps\":0.000000,"));
  EXPECT_THAT(outcome.out, HasSubstr("\"conversion_share\":null"));
}

TEST(PlayStats, KnowTheLongestTime) {
  const Outcome outcome =
      runPlayer({"--type", "uint8", "--frames", "3", "--fps", "max", "--stats=json"},
                Setting{.environment = {{"STUB_SHOW", "300"}}});
  EXPECT_THAT(valueOf(outcome.out, "host_ms", "max"), Ge(300));
  EXPECT_THAT(valueOf(outcome.out, "host_ms", "median"), Ge(300));
}

// The stub delays only the first frame.
TEST(PlayStats, TellTheSlowestHundredthApart) {
  const Outcome outcome =
      runPlayer({"--type", "uint8", "--frames", "20", "--fps", "max", "--stats=json"},
                Setting{.environment = {{"STUB_SLOW_START", "1"}}});
  EXPECT_THAT(valueOf(outcome.out, "host_ms", "p99"), Ge(1000));
  EXPECT_THAT(valueOf(outcome.out, "host_ms", "median"), Le(900));
}

TEST(PlayStats, TellRateAndDelay) {
  const Outcome outcome =
      runPlayer({"--type", "uint8", "--frames", "11", "--fps", "20", "--stats=json"});
  const double seconds = valueOf(outcome.out, "seconds");
  EXPECT_GT(seconds, 0);
  EXPECT_NEAR(valueOf(outcome.out, "fps") * seconds, 10, 0.001);  // from the first to the last
  EXPECT_GE(valueOf(outcome.out, "late_ms", "median"), 0.0);
}

TEST(PlayStats, MeasureConversionOnABlockWithoutAWindow) {
  const Outcome outcome = runPlayer(
      {"--type", "uint8", "--size", "16x16", "--frames", "33", "--fps", "max", "--stats=json"},
      Setting{.environment = {{"STUB_SHOW", "20"}}});
  EXPECT_THAT(outcome.callsOf("libCreate"), ElementsAre(HasSubstr("open=1"), HasSubstr("open=0")));
  // The twin gets five frames: the first, and four that are measured.
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(33 + 5));
  EXPECT_THAT(outcome.callsOf("libDestroy"), SizeIs(2));
  EXPECT_THAT(valueOf(outcome.out, "conversion_share"), AllOf(Ge(0.0), Le(0.5)));
}

TEST(PlayStats, AreToldAfterASignal) {
  const auto interrupt = [sent = false](pid_t player,
                                        const std::vector<std::string>& calls) mutable {
    if (calls.size() > 20 && !sent) sent = kill(player, SIGINT) == 0;
  };
  const Outcome outcome =
      runPlayer({"--type", "uint8", "--stats"}, Setting{.meanwhile = interrupt});
  EXPECT_EQ(outcome.signal, SIGINT);
  EXPECT_THAT(outcome.out, HasSubstr("  sent        "));
}

}  // namespace
}  // namespace framesink::play
