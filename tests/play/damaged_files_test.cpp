// Files that are damaged, truncated or claim wrong sizes: the player shows what it can read,
// reports the rest in one line, and does not crash, hang or use much memory.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <new>
#include <random>

#include "clips.hpp"
#include "frames/frame_planes.hpp"
#include "player_process.hpp"
#include "system/failure.hpp"
#include "video/video_source.hpp"

namespace framesink::play {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

constexpr int kFrames = 5;

struct Format {
  std::string name;
  std::string file;
  int frames = kFrames;
  Arguments making = {};  // ffmpeg's arguments after the input
};

void PrintTo(const Format& format, std::ostream* out) { *out << format.name; }

// Makes a small file of the format.
class PlayFormat : public testing::TestWithParam<Format> {
 protected:
  void SetUp() override {
    const std::string whole = (scratch_ / GetParam().file).string();
    Arguments arguments{"-f", "lavfi", "-i", "testsrc2=size=64x48:rate=10", "-frames:v"};
    arguments.push_back(std::to_string(GetParam().frames));
    arguments.insert(arguments.end(), GetParam().making.begin(), GetParam().making.end());
    arguments.push_back(whole);
    makeWithFfmpeg(arguments);
    whole_ = scratch_.read(GetParam().file);
  }

  std::string write(const std::string& content) const {
    return scratch_.write("damaged-" + GetParam().file, content);
  }
  std::string cutTo(double share) const {
    return whole_.substr(0, static_cast<std::size_t>(static_cast<double>(whole_.size()) * share));
  }

  Scratch scratch_;
  std::string whole_;
};

// Formats of which a truncated file can still be played.
const Format kMp4{"Mp4", "a.mp4", kFrames, {"-movflags", "faststart"}};
const Format kWebm{"Webm", "a.webm"};
const Format kY4m{"Y4m", "a.y4m"};
const Format kGif{"Gif", "a.gif"};
class PlayStream : public PlayFormat {};

std::string nameOf(const testing::TestParamInfo<Format>& instance) { return instance.param.name; }

INSTANTIATE_TEST_SUITE_P(Files, PlayFormat,
                         testing::Values(kMp4, Format{"Mp4IndexLast", "a.mp4"}, kWebm, kY4m, kGif,
                                         Format{"Png", "a.png", 1}),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Files, PlayStream, testing::Values(kMp4, kWebm, kY4m, kGif), nameOf);

// The result of reading a source to its end.
struct Reading {
  int frames = 0;
  std::string told;  // the message of the failure, or of damage that did not end the source
};

Reading read(const std::string& path) {
  constexpr int kEnough = 1000;  // frames after which a stream counts as endless
  Reading reading;
  try {
    const auto source = makeVideoSource(path, 0);
    while (reading.frames < kEnough && source->advance()) {
      FramePlanes planes(Kind::kRgb, *findSampleType("uint8"), Layout::kColumn, source->width(),
                         source->height());
      source->fill(planes);
      ++reading.frames;
    }
    EXPECT_LT(reading.frames, kEnough);
    reading.told = source->trouble();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status, kSourceTrouble);
    reading.told = failure.what();
    EXPECT_THAT(reading.told, Not(IsEmpty()));
  } catch (const std::bad_alloc&) {
    reading.told = path + ": out of memory";
  }
  return reading;
}

// The player prints its own name before such a message and a line feed after it.
void expectOneLineAbout(const std::string& path, const std::string& told) {
  EXPECT_THAT(told, AllOf(StartsWith(path + ": "), Not(HasSubstr("\n"))));
}

// An MP4 without its last bytes may still have all pictures. If pictures are missing, there must be
// a message.
TEST_P(PlayFormat, CutAnywhereTellsWhenPicturesAreMissing) {
  const Reading all = read(write(whole_));
  EXPECT_EQ(all.frames, GetParam().frames);
  EXPECT_THAT(all.told, IsEmpty());
  for (int share = 0; share < 100; share += 4) {
    SCOPED_TRACE(share);
    const std::string path = write(cutTo(share / 100.0));
    const Reading some = read(path);
    if (some.frames < all.frames || !some.told.empty()) expectOneLineAbout(path, some.told);
  }
}

// Requires a message only if there are no pictures, because no decoder notices a flip that merely
// changes a colour.
TEST_P(PlayFormat, WithFlippedBytesEndsInPicturesOrOneLine) {
  constexpr int kVariants = 60;
  std::mt19937 random(GetParam().frames);
  for (int variant = 0; variant < kVariants; ++variant) {
    SCOPED_TRACE(variant);
    std::string content = whole_;
    // Headers come first: half of the flips hit the first 100 bytes.
    const std::size_t reach = variant % 2 == 0 ? 100 : content.size();
    for (int flip = 0; flip <= variant % 8; ++flip) {
      content[random() % reach] ^= static_cast<char>(1 + random() % 255);
    }
    const std::string path = write(content);
    const Reading reading = read(path);
    if (reading.frames == 0 || !reading.told.empty()) expectOneLineAbout(path, reading.told);
  }
}

constexpr const char* kCut = ": damaged or cut short, not all of it could be read\n";

// The whole program: it sends the frames that the file has, prints one line and exits with 1.
TEST_P(PlayStream, CutNearItsEndPlaysThenFailsInOneLine) {
  const std::string path = write(cutTo(0.97));
  const Outcome outcome = runPlayer({path, "--fps", "max"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.callsOf("libUpdate"), Not(IsEmpty()));
  EXPECT_THAT(outcome.err, EndsWith("framesink-play: " + path + kCut));
}

TEST_P(PlayStream, CutOnStandardInputPlaysThenFailsInOneLine) {
  const Outcome outcome = runPlayer({"-", "--fps", "max"}, Setting{.input = write(cutTo(0.97))});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.callsOf("libUpdate"), Not(IsEmpty()));
  EXPECT_THAT(outcome.err, EndsWith(std::string("framesink-play: standard input") + kCut));
}

// ---- Refused from the start ----

// Expects status 1, one line on standard error, no window and little memory.
void expectRefused(const std::string& source, const std::string& told, const Setting& setting) {
  constexpr long kMostKilobytes = 1'000'000;  // most of this is for sanitizers
  const Outcome outcome = runPlayer({source}, setting);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "framesink-play: " + told + "\n");
  EXPECT_THAT(outcome.callsOf("libCreate"), IsEmpty());
  EXPECT_LT(outcome.peakKilobytes, kMostKilobytes);
}

struct Lie {
  std::string file;
  std::string content;
  std::string told;
};

void PrintTo(const Lie& lie, std::ostream* out) { *out << lie.file; }

std::string bytes(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) text.push_back(static_cast<char>(value));
  return text;
}

// A PNG that declares 60000 x 60000 pixels of 24 bits and has no data.
std::string hugePng() {
  return "\x89PNG\r\n\x1a\n" + bytes({0, 0, 0, 13}) + "IHDR" + bytes({0, 0, 0xea, 0x60}) +
         bytes({0, 0, 0xea, 0x60}) + bytes({8, 2, 0, 0, 0, 0x0f, 0xb0, 0xe2, 0x15}) +
         bytes({0, 0, 0, 8}) + "IDAT" +
         bytes({0x78, 0x9c, 3, 0, 0, 0, 0, 1, 0x48, 0x06, 0x89, 0xd2});
}

// A GIF of 65535 x 65535 pixels with one picture of that size.
std::string hugeGif() {
  const std::string extent = bytes({0xff, 0xff, 0xff, 0xff});
  return "GIF89a" + extent + bytes({0x80, 0, 0, 0, 0, 0, 0, 0, 0}) + "," + bytes({0, 0, 0, 0}) +
         extent + bytes({0, 2, 2, 0x4c, 1, 0}) + ";";
}

class PlayLie : public testing::TestWithParam<Lie> {};

TEST_P(PlayLie, IsRefusedInOneLineAndLittleMemory) {
  const Scratch scratch;
  const std::string path = scratch.write(GetParam().file, GetParam().content);
  expectRefused(path, path + ": " + GetParam().told, {});
}

const std::string kSamples = "FRAME\n" + std::string(1000, '\x80');

INSTANTIATE_TEST_SUITE_P(
    Files, PlayLie,
    testing::Values(Lie{"Empty.png", "", "not a video or an image"},
                    Lie{"Empty.mp4", "", "not a video or an image"},
                    Lie{"Huge.png", hugePng(), "no picture could be read from it"},
                    Lie{"Huge.gif", hugeGif(), "no picture could be read from it"},
                    Lie{"Huge.y4m", "YUV4MPEG2 W100000 H100000 F25:1 C420\n" + kSamples,
                        "damaged or cut short, nothing can be read"},
                    Lie{"Negative.y4m", "YUV4MPEG2 W-16 H8 F25:1 C420\n" + kSamples,
                        "damaged or cut short, nothing can be read"},
                    Lie{"Nothing.y4m", "YUV4MPEG2 W16 H8 F25:1 C420\n",
                        "no picture could be read from it"}),
    [](const auto& instance) {
      std::string name = instance.param.file;
      std::ranges::replace(name, '.', '_');
      return name;
    });

TEST(PlayPipe, ThatClosesWithoutDataIsTold) {
  const Scratch scratch;
  const std::string pipe = (scratch / "pipe").string();
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  // Opening for writing fails until the player has opened the pipe for reading.
  bool closed = false;
  const auto openAndClose = [&](pid_t, const auto&) {
    const int writer = closed ? -1 : open(pipe.c_str(), O_WRONLY | O_NONBLOCK);
    if (writer < 0) return;
    close(writer);
    closed = true;
  };
  expectRefused(pipe, pipe + ": not a video or an image", Setting{.meanwhile = openAndClose});
  EXPECT_TRUE(closed);
}

TEST(PlayPipe, OnStandardInputWithoutDataIsTold) {
  expectRefused("-", "standard input: not a video or an image", {});
}

// FFmpeg 5 must search in a large GIF; newer versions read one from a pipe, too.
TEST(PlayPipe, OfALargeGifIsPlayedWholeOrRefused) {
  const Scratch scratch;
  const std::string gif = (scratch / "large.gif").string();
  makeWithFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=640x480:rate=10", "-frames:v", "20", gif});
  const Outcome file = runPlayer({gif, "--fps", "max"});
  EXPECT_EQ(file.status, 0);
  EXPECT_THAT(file.callsOf("libUpdate"), SizeIs(20));
  const Outcome pipe = runPlayer({"-", "--fps", "max"}, Setting{.input = gif});
  if (pipe.status == 0) {
    EXPECT_THAT(pipe.callsOf("libUpdate"), SizeIs(20));
    EXPECT_EQ(pipe.frame, file.frame);
  } else {
    expectRefused("-", "standard input: damaged, cut short, or not readable from a pipe",
                  Setting{.input = gif});
  }
}

}  // namespace
}  // namespace framesink::play
