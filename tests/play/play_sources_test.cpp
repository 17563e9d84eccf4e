// framesink-play with several sources: each has its own window, options and pace.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

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

// Plays two raw streams of 2 x 2 pixels. All samples of a stream are equal.
class PlaySources : public testing::Test {
 protected:
  std::string stream(const std::string& name, int frames, char sample) const {
    return scratch_.write(name, std::string(static_cast<std::size_t>(frames) * 4, sample));
  }

  // Runs the player with the options that all sources share, and `arguments`.
  static Outcome run(const Arguments& arguments) {
    Arguments line{"--raw", "2x2:uint8:intensity", "--hold", "0"};
    line.insert(line.end(), arguments.begin(), arguments.end());
    return runPlayer(line);
  }

  Scratch scratch_;
  const std::string a_ = stream("a.raw", 5, 'a');
  const std::string b_ = stream("b.raw", 5, 'b');
};

TEST_F(PlaySources, HaveAWindowEach) {
  const Outcome outcome = run({"--fps", "max", a_, b_});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libCreate"),
              ElementsAre(HasSubstr("name=\"framesink-play 1\" title=\"a.raw\" fullscreen=0 open=1 "
                                    "x=20 y=60"),
                          HasSubstr("name=\"framesink-play 2\" title=\"b.raw\" fullscreen=0 open=1 "
                                    "x=42 y=60")));
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(10));
  EXPECT_THAT(outcome.callsOf("libDestroy"), SizeIs(2));
  EXPECT_THAT(outcome.err, HasSubstr("framesink-play: 10 frames"));
}

TEST_F(PlaySources, HaveOptionsOfTheirOwn) {
  const Outcome outcome =
      run({"--fps", "max", "--title", "both", "--layout", "row", a_, "--title", "one", "--windows",
           "2", b_, "--raw", "1x1:uint32:intensity", "--layout", "column"});
  EXPECT_THAT(outcome.callsOf("libCreate"),
              ElementsAre(HasSubstr("title=\"one\""), HasSubstr("title=\"one (2)\""),
                          HasSubstr("name=\"framesink-play 3\" title=\"both\"")));
  EXPECT_THAT(outcome.callsOf("description"),
              ElementsAre(HasSubstr("widths=2,0,0 heights=2,0,0 type=3 layout=0"),
                          HasSubstr("widths=2,0,0 heights=2,0,0 type=3 layout=0"),
                          HasSubstr("widths=1,0,0 heights=1,0,0 type=7 layout=1")));
}

TEST_F(PlaySources, ShareAPositionOrHaveTheirOwn) {
  const Outcome outcome =
      run({"--fps", "max", "--position", "100,50", a_, b_, "--position", "7,8", a_});
  EXPECT_THAT(
      outcome.callsOf("libCreate"),
      ElementsAre(HasSubstr("x=100 y=50 "), HasSubstr("x=7 y=8 "), HasSubstr("x=144 y=50 ")));
}

TEST_F(PlaySources, HaveOneFullScreenBetweenThemOrAsAskedFor) {
  EXPECT_THAT(run({"--fps", "max", "--fullscreen", a_, b_}).callsOf("libCreate"),
              ElementsAre(HasSubstr("fullscreen=1"), HasSubstr("fullscreen=0")));
  EXPECT_THAT(run({"--fps", "max", a_, b_, "--fullscreen"}).callsOf("libCreate"),
              ElementsAre(HasSubstr("fullscreen=0"), HasSubstr("fullscreen=1")));
}

TEST_F(PlaySources, PlayAtTheSameTime) {
  const Outcome outcome = run({"--fps", "20", a_, b_});
  const auto updates = outcome.callsOf("libUpdate");
  ASSERT_THAT(updates, SizeIs(10));
  EXPECT_NE(updates[0], updates[1]);
  for (std::size_t i = 2; i < updates.size(); ++i) EXPECT_EQ(updates[i], updates[i - 2]) << i;
  EXPECT_THAT(outcome.seconds, AllOf(Ge(0.25), Le(5)));
}

TEST_F(PlaySources, KeepTheirOwnPace) {
  const Outcome outcome = run({a_, "--fps", "50", b_, "--fps", "1", "--frames", "2"});
  const auto updates = outcome.callsOf("libUpdate");
  ASSERT_THAT(updates, SizeIs(7));
  // The slow source sends its second frame a second after its first, when the fast one has ended.
  EXPECT_EQ(std::ranges::count(updates, updates.back()), 2);
  EXPECT_NE(updates[5], updates.back());
  EXPECT_THAT(outcome.seconds, Ge(2));
}

TEST_F(PlaySources, PlayOnWhenOneHasEnded) {
  const Outcome outcome = run({a_, "--frames", "1", b_});
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(6));
}

TEST_F(PlaySources, LeaveADumpEach) {
  const std::string one = (scratch_ / "one").string();
  const std::string two = (scratch_ / "two").string();
  EXPECT_EQ(run({"--fps", "max", a_, "--dump-frame", one, b_, "--dump-frame", two}).status, 0);
  EXPECT_EQ(scratch_.read("one"), "aaaa");
  EXPECT_EQ(scratch_.read("two"), "bbbb");
}

TEST_F(PlaySources, CannotShareADump) {
  const Outcome outcome = run({"--dump-frame", (scratch_ / "one").string(), a_, b_});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr("--dump-frame: each FILE needs a file of its own"));
}

TEST_F(PlaySources, ThatAreDamagedAreAllTold) {
  const std::string cut = scratch_.write("cut.raw", "aaaaa");
  const std::string stub = scratch_.write("stub.raw", "bbbbbb");
  const Outcome outcome = run({"--fps", "max", cut, a_, stub});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(7));
  EXPECT_THAT(outcome.err, EndsWith("\nframesink-play: " + cut +
                                    ": its last frame is cut short, 1 of 4 bytes\n"
                                    "framesink-play: " +
                                    stub + ": its last frame is cut short, 2 of 4 bytes\n"));
}

TEST_F(PlaySources, AreAllToldOfWhenADumpCannotBeWritten) {
  const std::string cut = scratch_.write("cut.raw", "aaaaa");
  const std::string dump = (scratch_ / "dump").string();
  const Outcome outcome = run(
      {"--fps", "max", "--stats", a_, "--dump-frame", "/dev/full", b_, "--dump-frame", dump, cut});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(scratch_.read("dump"), "bbbb");
  EXPECT_THAT(outcome.out, HasSubstr(cut + ": intensity uint8 2x2, 1 window\n"));
  EXPECT_THAT(outcome.err, EndsWith("\nframesink-play: /dev/full: cannot be written\n"
                                    "framesink-play: " +
                                    cut + ": its last frame is cut short, 1 of 4 bytes\n"));
}

TEST_F(PlaySources, OneOfWhichIsMissingShowNothing) {
  const Outcome outcome = run({a_, "/nonexistent/b.raw"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "framesink-play: /nonexistent/b.raw: No such file or directory\n");
  EXPECT_THAT(outcome.callsOf("libCreate"), IsEmpty());
}

TEST_F(PlaySources, MayHaveNamesLikeOptions) {
  const Outcome outcome = runPlayer({"--library", STUB_LIBRARY, "--raw", "2x2:uint8:intensity",
                                     "--hold", "0", "--", "--nonsense"},
                                    Setting{.stubLibrary = false});
  EXPECT_EQ(outcome.err, "framesink-play: --nonsense: No such file or directory\n");
}

}  // namespace
}  // namespace framesink::play
