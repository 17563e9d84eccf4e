// Damage that only FFmpeg's log tells is that of one source, however many are played with it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "clips.hpp"
#include "player_process.hpp"

namespace framesink::play {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

constexpr const char* kDamaged = ": damaged or cut short, not all of it could be read\n";

class PlayDamage : public testing::Test {
 protected:
  // A JPEG whose end is missing; decoders only log that.
  std::string cutImage() const {
    const std::string whole = (scratch_ / "a.jpg").string();
    makeWithFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=160x120:rate=10", "-frames:v", "1", whole});
    const std::string content = scratch_.read("a.jpg");
    return scratch_.write("cut.jpg", content.substr(0, content.size() * 6 / 10));
  }

  Scratch scratch_;
  const std::string cut_ = cutImage();
  const std::string whole_ = scratch_.write("b.y4m", video(5, "25:1"));
};

TEST_F(PlayDamage, IsToldOfTheSourceThatHasIt) {
  for (const Arguments& files : {Arguments{cut_, whole_}, Arguments{whole_, cut_}}) {
    Arguments line{"--fps", "max"};
    line.insert(line.end(), files.begin(), files.end());
    const Outcome outcome = runPlayer(line);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, EndsWith("\nframesink-play: " + cut_ + kDamaged));
    EXPECT_THAT(outcome.err, Not(HasSubstr(whole_)));
  }
}

// Each pass opens the whole file anew.
TEST_F(PlayDamage, EndsNoOtherSourcesLoopAndIsNotForgottenByIt) {
  const Outcome outcome =
      runPlayer({"--fps", "max", cut_, whole_, "--loop", "--frames", "12", "--stats=json"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("\"frames\":12,"));
  EXPECT_THAT(outcome.err, EndsWith("\nframesink-play: " + cut_ + kDamaged));
}

}  // namespace
}  // namespace framesink::play
