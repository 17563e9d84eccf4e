// Where a GIF ends: whole ones play without a complaint, whatever follows their last picture, and
// the player notices that an end is missing even if the decoder does not.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "clips.hpp"
#include "player_process.hpp"

namespace framesink::play {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

const std::string kComment(
    "!\xfe\x05"
    "he;lo\0",
    9);

// What stands in place of the trailer of a GIF made by ffmpeg.
struct End {
  std::string name;
  std::string bytes;
  int pictures = 5;
};

void PrintTo(const End& end, std::ostream* out) { *out << end.name; }

std::string nameOf(const testing::TestParamInfo<End>& instance) { return instance.param.name; }

class PlayGif : public testing::TestWithParam<End> {
 protected:
  void SetUp() override {
    const std::string whole = (scratch_ / "whole.gif").string();
    makeWithFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=64x48:rate=10", "-frames:v",
                    std::to_string(GetParam().pictures), whole});
    std::string content = scratch_.read("whole.gif");
    ASSERT_THAT(content, EndsWith(";"));
    content.pop_back();
    path_ = scratch_.write("a.gif", content + GetParam().bytes);
  }

  void expectWhole(const Outcome& outcome) const {
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err, Not(HasSubstr("damaged")));
    EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(GetParam().pictures));
  }
  void expectCut(const Outcome& outcome, const std::string& name) const {
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr(name + ": damaged or cut short"));
    EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(GetParam().pictures));
  }

  Scratch scratch_;
  std::string path_;
};

class PlayWholeGif : public PlayGif {};
INSTANTIATE_TEST_SUITE_P(Ends, PlayWholeGif,
                         testing::Values(End{"Trailer", ";"}, End{"TrailerOfOnePicture", ";", 1},
                                         End{"CommentAndTrailer", kComment + ";"},
                                         End{"CommentAndTrailerOfOnePicture", kComment + ";", 1}),
                         nameOf);

TEST_P(PlayWholeGif, PlaysFromAFile) {
  expectWhole(runPlayer({path_, "--fps", "max", "--hold", "0"}));
}

TEST_P(PlayWholeGif, PlaysFromAPipe) {
  expectWhole(runPlayer({"-", "--fps", "max", "--hold", "0"}, Setting{.input = path_}));
}

// FFmpeg 5 complains about the rubbish, newer versions do not.
class PlayGifWithRubbish : public PlayGif {};
INSTANTIATE_TEST_SUITE_P(Ends, PlayGifWithRubbish,
                         testing::Values(End{"TrailerAndLineFeed", ";\r\n"},
                                         End{"TrailerAndZeros", ";" + std::string(5000, '\0')},
                                         End{"ZeroAndTrailer", std::string("\0;", 2)}),
                         nameOf);

TEST_P(PlayGifWithRubbish, ShowsAllItsPictures) {
  Arguments line{path_, "--fps", "max", "--hold", "0"};
  EXPECT_THAT(runPlayer(line).callsOf("libUpdate"), SizeIs(GetParam().pictures));
  line.front() = "-";
  EXPECT_THAT(runPlayer(line, Setting{.input = path_}).callsOf("libUpdate"),
              SizeIs(GetParam().pictures));
}

class PlayCutGif : public PlayGif {};
INSTANTIATE_TEST_SUITE_P(Ends, PlayCutGif,
                         testing::Values(End{"Nothing", ""}, End{"NothingOfOnePicture", "", 1},
                                         End{"Comment", kComment},
                                         End{"HalfAComment", kComment.substr(0, 6)}),
                         nameOf);

TEST_P(PlayCutGif, IsToldFromAFile) {
  expectCut(runPlayer({path_, "--fps", "max", "--hold", "0"}), path_);
}

TEST_P(PlayCutGif, IsToldFromAPipe) {
  expectCut(runPlayer({"-", "--fps", "max", "--hold", "0"}, Setting{.input = path_}),
            "standard input");
}

}  // namespace
}  // namespace framesink::play
