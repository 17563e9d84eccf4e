// Damage that FFmpeg only logs is reported for the source that has it, even if several sources
// play.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "clips.hpp"
#include "player_process.hpp"
#include "support/wait_until.hpp"
#include "video/video_source.hpp"

extern "C" {
#include <libavutil/cpu.h>
}

namespace framesink::play {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kDamaged = ": damaged or cut short, not all of it could be read\n";

class PlayDamage : public testing::Test {
 protected:
  // A JPEG without its end, which decoders only log.
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

// Each pass of --loop opens the undamaged file again, which must not clear the other file's damage.
TEST_F(PlayDamage, EndsNoOtherSourcesLoopAndIsNotForgottenByIt) {
  const Outcome outcome =
      runPlayer({"--fps", "max", cut_, whole_, "--loop", "--frames", "12", "--stats=json"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("\"frames\":12,"));
  EXPECT_THAT(outcome.err, EndsWith("\nframesink-play: " + cut_ + kDamaged));
}

// The last of nine pictures is noise, which takes long to decode, and is damaged near its end. A
// thread of FFmpeg finds the damage after the source has already returned an earlier picture.
TEST(PlayDamageOnAThread, IsToldOfTheSourceWhoseDecoderFoundIt) {
  if (av_cpu_count() < 2) GTEST_SKIP() << "with one processor FFmpeg uses no threads";
  const Scratch scratch;
  const std::string path = (scratch / "a.avi").string();
  makeWithFfmpeg({"-filter_complex",
                  "color=black:size=640x480:rate=10:duration=0.8[black];"
                  "color=gray:size=640x480:rate=10:duration=0.1,noise=alls=100[noise];"
                  "[black][noise]concat",
                  "-c:v", "mpeg4", "-g", "1", "-qscale", "1", path});
  std::string content = scratch.read("a.avi");
  content.replace(content.size() * 9 / 10, 64, 64, '\x55');
  scratch.write("a.avi", content);

  const auto source = makeVideoSource(path, 0);
  for (int i = 0; i < 7; ++i) ASSERT_TRUE(source->advance());
  EXPECT_TRUE(test::waitUntil([&] { return !source->trouble().empty(); }));
}

}  // namespace
}  // namespace framesink::play
