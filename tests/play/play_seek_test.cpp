// framesink-play's --seek and --loop, the pace of videos, and sequences of images.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "clips.hpp"
#include "player_process.hpp"

namespace framesink::play {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::Ge;
using testing::HasSubstr;
using testing::Le;
using testing::SizeIs;

// ---- --seek ----

struct Clip {
  const char* name;
  Arguments making;  // ffmpeg's arguments after the input, which has 20 frames, 10 per second
  const char* file;
};

void PrintTo(const Clip& clip, std::ostream* out) { *out << clip.name; }

class PlaySeek : public testing::TestWithParam<Clip> {
 protected:
  void SetUp() override {
    Arguments arguments{"-f", "lavfi", "-i", "testsrc2=size=64x48:rate=10:duration=2"};
    arguments.insert(arguments.end(), GetParam().making.begin(), GetParam().making.end());
    arguments.push_back(clip_);
    makeWithFfmpeg(arguments);
  }

  Scratch scratch_;
  std::string clip_ = (scratch_ / GetParam().file).string();
};

TEST_P(PlaySeek, BeginsWithTheFrameOfThatSecond) {
  const Outcome seeking = runPlayer({clip_, "--seek", "1.2", "--frames", "1"});
  const Outcome counting = runPlayer({clip_, "--fps", "max", "--frames", "13"});
  EXPECT_EQ(seeking.status, 0);
  EXPECT_THAT(seeking.frame, SizeIs(64 * 48 * 3));
  EXPECT_TRUE(seeking.frame == counting.frame);
}

TEST_P(PlaySeek, PlaysToTheEndFromThere) {
  const Outcome outcome = runPlayer({clip_, "--seek", "1.2"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(8));
  EXPECT_THAT(outcome.seconds, AllOf(Ge(0.8), Le(10)));
}

TEST_P(PlaySeek, BeyondTheEndIsTold) {
  const Outcome outcome = runPlayer({clip_, "--seek", "100"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "framesink-play: " + clip_ + ": ends before the place that --seek asks for\n");
}

INSTANTIATE_TEST_SUITE_P(
    Clips, PlaySeek,
    testing::Values(Clip{"Mp4", {"-g", "7", "-bf", "2", "-pix_fmt", "yuv420p"}, "a.mp4"},
                    Clip{"Matroska", {"-c:v", "ffv1", "-g", "5"}, "a.mkv"},
                    Clip{"Avi", {"-c:v", "mpeg4", "-g", "8"}, "a.avi"},
                    Clip{"TransportStream", {"-g", "6", "-pix_fmt", "yuv420p"}, "a.ts"},
                    Clip{"Yuv4Mpeg", {"-pix_fmt", "yuv420p"}, "a.y4m"}, Clip{"Gif", {}, "a.gif"}),
    [](const auto& instance) { return instance.param.name; });

TEST(PlaySeekOfAPipe, ReadsOnToThatSecond) {
  const Scratch scratch;
  const Outcome outcome = runPlayer({"-", "--kind", "ycbcr422", "--seek", "0.5", "--frames", "1"},
                                    Setting{.input = scratch.write("a.y4m", video(9, "10:1"))});
  EXPECT_EQ(outcome.frame, std::string(16 * 8 * 2, 6));
}

// ---- --loop ----

TEST(PlayLoop, BeginsAgainAtTheEnd) {
  const Scratch scratch;
  const Outcome outcome = runPlayer({scratch.write("a.y4m", video(3, "25:1")), "--kind", "ycbcr422",
                                     "--fps", "max", "--loop", "--frames", "8"});
  EXPECT_EQ(outcome.status, 0);
  const auto updates = outcome.callsOf("libUpdate");
  ASSERT_THAT(updates, SizeIs(8));
  for (std::size_t i = 0; i + 3 < updates.size(); ++i) EXPECT_EQ(updates[i], updates[i + 3]);
  EXPECT_EQ(outcome.frame, std::string(16 * 8 * 2, 2));
  EXPECT_THAT(outcome.callsOf("libCreate"), SizeIs(1));
}

TEST(PlayLoop, KeepsThePaceFromPassToPass) {
  const Scratch scratch;
  const Outcome outcome =
      runPlayer({scratch.write("a.y4m", video(2, "10:1")), "--loop", "--frames", "8"});
  EXPECT_THAT(outcome.seconds, AllOf(Ge(0.8), Le(5)));
}

TEST(PlayLoop, BeginsAtTheSecondAskedFor) {
  const Scratch scratch;
  const Outcome outcome = runPlayer({scratch.write("a.y4m", video(4, "10:1")), "--kind", "ycbcr422",
                                     "--fps", "max", "--seek", "0.2", "--loop", "--frames", "3"});
  EXPECT_EQ(outcome.frame, std::string(16 * 8 * 2, 3));
}

TEST(PlayLoop, LeavesAnImageAlone) {
  const Scratch scratch;
  const std::string image = scratch.write("a.pgm", "P5 2 2 255\nabcd");
  const Outcome outcome = runPlayer({image, "--loop", "--duration", "0.5"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(1));
  EXPECT_THAT(outcome.seconds, Ge(0.5));
}

TEST(PlayLoop, OfADamagedFileEndsAfterOnePass) {
  const Scratch scratch;
  const std::string whole = (scratch / "a.avi").string();
  makeWithFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=160x120:rate=10:duration=1", whole});
  const std::string content = scratch.read("a.avi");
  const std::string cut = scratch.write("cut.avi", content.substr(0, content.size() * 6 / 10));
  const Outcome outcome = runPlayer({cut, "--loop", "--fps", "max"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(Le(10u)));
  EXPECT_THAT(outcome.err, HasSubstr("damaged or cut short"));
}

TEST(PlayLoop, EndsWhenTheFileHasAnotherSize) {
  const Scratch scratch;
  const std::string clip = scratch.write("a.y4m", video(5, "10:1"));
  const std::string other = scratch.write(
      "b.y4m", "YUV4MPEG2 W32 H8 F10:1 Ip C420\nFRAME\n" + std::string(32 * 8 * 3 / 2, 'x'));
  const auto replace = [&](pid_t, const std::vector<std::string>& calls) {
    if (!calls.empty() && std::filesystem::exists(other)) std::filesystem::rename(other, clip);
  };
  const Outcome outcome = runPlayer({clip, "--loop"}, Setting{.meanwhile = replace});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr(clip + ": its size has changed\n"));
}

TEST(PlayLoop, OfAFileThatGoesAwayEndsWhileOthersPlayOn) {
  const Scratch scratch;
  const std::string gone = scratch.write("a.y4m", video(5, "25:1"));
  const std::string stays = scratch.write("b.y4m", video(10, "10:1"));
  const std::string dump = (scratch / "dump").string();
  const auto remove = [&](pid_t, const std::vector<std::string>& calls) {
    if (!calls.empty()) std::filesystem::remove(gone);
  };
  const Outcome outcome =
      runPlayer({"--kind", "ycbcr422", "--stats=json", gone, "--loop", stays, "--dump-frame", dump},
                Setting{.meanwhile = remove});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, EndsWith("\nframesink-play: " + gone + ": No such file or directory\n"));
  EXPECT_THAT(outcome.out,
              HasSubstr("b.y4m\",\"kind\":\"ycbcr422\",\"type\":\"uint8\",\"width\":16,"
                        "\"height\":8,\"windows\":1,\"frames\":10,"));
  EXPECT_EQ(scratch.read("dump"), std::string(16 * 8 * 2, 10));
}

// ---- Pace ----

TEST(PlayPace, FollowsTimestampsThatAreNotEven) {
  const Scratch scratch;
  const std::string clip = (scratch / "a.mkv").string();
  makeWithFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=64x48:rate=10:duration=0.4", "-vf",
                  "setpts='if(gt(N,2),N+12,N)'", "-fps_mode", "vfr", "-c:v", "ffv1", clip});
  const Outcome outcome = runPlayer({clip});
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(4));
  EXPECT_THAT(outcome.seconds, AllOf(Ge(1.5), Le(10)));
}

// ---- Sequences of images ----

TEST(PlaySequence, BeginsWithTheFirstNumberThereIs) {
  const Scratch scratch;
  makeWithFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=64x48:rate=10:duration=0.5", "-start_number",
                  "117", (scratch / "frame-%04d.png").string()});
  const Outcome outcome = runPlayer({(scratch / "frame-%04d.png").string(), "--fps", "max"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(5));
  const Outcome last = runPlayer({(scratch / "frame-0121.png").string(), "--hold", "0"});
  EXPECT_TRUE(outcome.frame == last.frame);
}

TEST(PlaySequence, Has25ImagesPerSecond) {
  const Scratch scratch;
  const std::string sequence = (scratch / "%d.png").string();
  makeWithFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=64x48:rate=10:duration=1", sequence});
  const Outcome outcome = runPlayer({sequence, "--seek", "0.2", "--frames", "1"});
  const Outcome sixth = runPlayer({(scratch / "6.png").string(), "--hold", "0"});
  EXPECT_THAT(outcome.frame, SizeIs(64 * 48 * 3));
  EXPECT_TRUE(outcome.frame == sixth.frame);
}

TEST(PlaySequence, OfNoImagesIsTold) {
  const Outcome outcome = runPlayer({"/nonexistent/frame-%04d.png"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "framesink-play: /nonexistent/frame-%04d.png: No such file or directory\n");
}

}  // namespace
}  // namespace framesink::play
