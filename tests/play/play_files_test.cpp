// framesink-play with videos and images: the samples it sends, its pace, and files that it rejects.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>

#include "clips.hpp"
#include "player_process.hpp"

namespace framesink::play {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;
using testing::StartsWith;

// The swscale flags with which framesink-play promises to make 8-bit planes.
constexpr const char* kSwsFlags = "bicubic+accurate_rnd+full_chroma_int+bitexact";

std::string bytes(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) text.push_back(static_cast<char>(value));
  return text;
}

// The samples as they lie in memory.
template <class Sample>
std::string bytesOf(std::initializer_list<Sample> samples) {
  std::string text(samples.size() * sizeof(Sample), '\0');
  std::memcpy(text.data(), samples.begin(), text.size());
  return text;
}

// Reorders a row-major plane of `width` x `height` samples of `size` bytes to column-major.
std::string columnsOf(const std::string& rows, int width, int height, int size = 1) {
  std::string columns;
  for (int column = 0; column < width; ++column) {
    for (int row = 0; row < height; ++row) {
      columns += rows.substr(static_cast<std::size_t>(row * width + column) * size, size);
    }
  }
  return columns;
}

// Every third byte of `pixels` from `first` on.
std::string everyThird(const std::string& pixels, std::size_t first) {
  std::string plane;
  for (std::size_t i = first; i < pixels.size(); i += 3) plane.push_back(pixels[i]);
  return plane;
}

// Converts the first frame of `source` with ffmpeg and returns its raw bytes.
std::string framesByFfmpeg(const Scratch& scratch, const std::string& source,
                           const Arguments& conversion) {
  const std::string result = (scratch / "expected.raw").string();
  Arguments arguments{"-i", source, "-frames:v", "1", "-sws_flags", kSwsFlags};
  arguments.insert(arguments.end(), conversion.begin(), conversion.end());
  arguments.insert(arguments.end(), {"-f", "rawvideo", result});
  makeWithFfmpeg(arguments);
  return scratch.read("expected.raw");
}

Outcome runOnFirstFrame(const std::string& source, const std::string& kind,
                        const std::string& type) {
  return runPlayer({source, "--kind", kind, "--type", type, "--frames", "1", "--fps", "max"});
}

// ---- Samples ----

struct TypedSamples {
  std::string type;
  int id;
  std::string samples;  // the samples of the 8-bit codes 0, 127, 128, 255
};

void PrintTo(const TypedSamples& samples, std::ostream* out) { *out << samples.type; }

class PlaySamples : public testing::TestWithParam<TypedSamples> {};

// Uses one column of four rows, so that row-major and column-major order are the same.
TEST_P(PlaySamples, SpanTheRangeOfTheirType) {
  const Scratch scratch;
  const std::string image = scratch.write("grey.pgm", "P5 1 4 255\n" + bytes({0, 127, 128, 255}));
  const Outcome outcome = runOnFirstFrame(image, "intensity", GetParam().type);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.frame == GetParam().samples);
  EXPECT_THAT(outcome.callsOf("description"),
              ElementsAre("description valid=1 fourcc=\"\" inputs=1 components=1 widths=1,0,0 "
                          "heights=4,0,0 type=" +
                          std::to_string(GetParam().id) + " layout=1"));
}

INSTANTIATE_TEST_SUITE_P(
    Types, PlaySamples,
    testing::Values(
        TypedSamples{"double", 0, bytesOf<double>({0.0, 127 / 255.0, 128 / 255.0, 1.0})},
        TypedSamples{"single", 1, bytesOf<float>({0.0f, 127 / 255.0f, 128 / 255.0f, 1.0f})},
        TypedSamples{"int8", 2, bytesOf<std::int8_t>({-128, -1, 0, 127})},
        TypedSamples{"uint8", 3, bytesOf<std::uint8_t>({0, 127, 128, 255})},
        TypedSamples{"int16", 4, bytesOf<std::int16_t>({-32768, -129, 128, 32767})},
        TypedSamples{"uint16", 5, bytesOf<std::uint16_t>({0, 32639, 32896, 65535})},
        TypedSamples{"int32", 6, bytesOf<std::int32_t>({INT32_MIN, -8421505, 8421504, INT32_MAX})},
        TypedSamples{"uint32", 7,
                     bytesOf<std::uint32_t>({0, 2139062143u, 2155905152u, 4294967295u})},
        TypedSamples{"boolean", 8, bytesOf<std::uint8_t>({0, 0, 1, 1})}),
    [](const auto& instance) { return instance.param.type; });

// ---- Kinds and layouts ----

// Two rows of three pixels.
const std::string kPixels = bytes({1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 15, 16, 17, 18, 19});

TEST(PlayPlanes, OfRgbAreColumnByColumn) {
  const Scratch scratch;
  const std::string image = scratch.write("a.ppm", "P6 3 2 255\n" + kPixels);
  const Outcome outcome = runOnFirstFrame(image, "rgb", "uint8");
  EXPECT_EQ(outcome.frame, bytes({1, 11, 4, 14, 7, 17, 2, 12, 5, 15, 8, 18, 3, 13, 6, 16, 9, 19}));
  EXPECT_THAT(outcome.callsOf("libCreate"), ElementsAre(HasSubstr("title=\"a.ppm\"")));
}

TEST(PlayPlanes, AreRgbInBytesByDefault) {
  const Scratch scratch;
  const std::string image = scratch.write("a.ppm", "P6 3 2 255\n" + kPixels);
  const Outcome outcome = runPlayer({image, "--frames", "1"});
  EXPECT_THAT(outcome.callsOf("description"),
              ElementsAre("description valid=1 fourcc=\"\" inputs=3 components=3 widths=3,3,3 "
                          "heights=2,2,2 type=3 layout=1"));
}

TEST(PlayPlanes, AreRowByRowInTheOtherLayout) {
  const Scratch scratch;
  const std::string image = scratch.write("a.ppm", "P6 3 2 255\n" + kPixels);
  const Outcome outcome = runPlayer({image, "--layout", "row", "--frames", "1"});
  EXPECT_EQ(outcome.frame,
            everyThird(kPixels, 0) + everyThird(kPixels, 1) + everyThird(kPixels, 2));
}

// A file of YCbCr 4:2:2 with 5 x 2 luma and 3 x 2 chroma samples.
const std::string kYcbcr = "YUV4MPEG2 W5 H2 F25:1 Ip C422\nFRAME\n" +
                           bytes({16, 20, 30, 40, 50, 60, 70, 80, 90, 235}) +
                           bytes({16, 128, 240, 100, 110, 120}) + bytes({3, 4, 5, 6, 7, 8});

TEST(PlayPlanes, OfYcbcrLoseTheColumnThatHasNoPartner) {
  const Scratch scratch;
  const Outcome outcome = runOnFirstFrame(scratch.write("a.y4m", kYcbcr), "ycbcr422", "uint8");
  EXPECT_EQ(outcome.frame, bytes({16, 60, 20, 70, 30, 80, 40, 90}) + bytes({16, 100, 128, 110}) +
                               bytes({3, 6, 4, 7}));
  EXPECT_THAT(outcome.callsOf("description"),
              ElementsAre("description valid=1 fourcc=\"YUY2\" inputs=3 components=3 widths=4,2,2 "
                          "heights=2,2,2 type=3 layout=1"));
}

TEST(PlayPlanes, OfYcbcrNeedTwoColumns) {
  const Scratch scratch;
  const Outcome outcome =
      runOnFirstFrame(scratch.write("a.pgm", "P5 1 1 255\n*"), "ycbcr422", "uint8");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, StartsWith("framesink-play: "));
  EXPECT_THAT(outcome.callsOf("libCreate"), IsEmpty());
}

TEST(PlayPlanes, KeepSixteenBitsWhereTheSourceHasThem) {
  const Scratch scratch;
  const std::string image =
      scratch.write("a.pgm", "P5 1 3 65535\n" + bytes({0x12, 0x34, 0x00, 0x01, 0xff, 0xff}));
  EXPECT_EQ(runOnFirstFrame(image, "intensity", "uint16").frame,
            bytesOf<std::uint16_t>({0x1234, 1, 0xffff}));
  EXPECT_EQ(runOnFirstFrame(image, "intensity", "uint8").frame, bytes({0x12, 0, 0xff}));
}

// ---- Compared with ffmpeg's conversion ----

struct Clip {
  std::string name;
  Arguments making;  // ffmpeg's arguments after the input
  std::string file;
};

void PrintTo(const Clip& clip, std::ostream* out) { *out << clip.name; }

class PlayConversion : public testing::TestWithParam<Clip> {
 protected:
  static constexpr int kWidth = 70;
  static constexpr int kHeight = 50;

  void SetUp() override {
    clip_ = (scratch_ / GetParam().file).string();
    Arguments arguments{"-f", "lavfi", "-i", "testsrc2=size=70x50:rate=10:duration=0.3"};
    arguments.insert(arguments.end(), GetParam().making.begin(), GetParam().making.end());
    arguments.push_back(clip_);
    makeWithFfmpeg(arguments);
  }

  Scratch scratch_;
  std::string clip_;
};

TEST_P(PlayConversion, ToRgbIsThatOfSwscale) {
  const std::string pixels = framesByFfmpeg(scratch_, clip_, {"-pix_fmt", "rgb24"});
  ASSERT_THAT(pixels, SizeIs(kWidth * kHeight * 3));
  std::string expected;
  for (int i = 0; i < 3; ++i) expected += columnsOf(everyThird(pixels, i), kWidth, kHeight);
  EXPECT_TRUE(runOnFirstFrame(clip_, "rgb", "uint8").frame == expected);
}

TEST_P(PlayConversion, ToIntensityIsThatOfSwscaleInFullRange) {
  const std::string pixels =
      framesByFfmpeg(scratch_, clip_, {"-vf", "scale=out_range=full", "-pix_fmt", "gray"});
  ASSERT_THAT(pixels, SizeIs(kWidth * kHeight));
  EXPECT_TRUE(runOnFirstFrame(clip_, "intensity", "uint8").frame ==
              columnsOf(pixels, kWidth, kHeight));
}

TEST_P(PlayConversion, ToYcbcrIsThatOfSwscaleInStudioRange) {
  const std::string pixels = framesByFfmpeg(
      scratch_, clip_,
      {"-vf", "scale=out_range=limited:out_color_matrix=bt601", "-pix_fmt", "yuv422p"});
  constexpr std::size_t kLuma = kWidth * kHeight;
  ASSERT_THAT(pixels, SizeIs(kLuma * 2));
  EXPECT_TRUE(runOnFirstFrame(clip_, "ycbcr422", "uint8").frame ==
              columnsOf(pixels.substr(0, kLuma), kWidth, kHeight) +
                  columnsOf(pixels.substr(kLuma, kLuma / 2), kWidth / 2, kHeight) +
                  columnsOf(pixels.substr(kLuma * 3 / 2), kWidth / 2, kHeight));
}

INSTANTIATE_TEST_SUITE_P(
    Clips, PlayConversion,
    testing::Values(Clip{"Png", {"-frames:v", "1"}, "a.png"},
                    Clip{"GreyPng", {"-frames:v", "1", "-pix_fmt", "gray"}, "a.png"},
                    Clip{"GreyPgm", {"-frames:v", "1", "-pix_fmt", "gray"}, "a.pgm"},
                    Clip{"FullRangeJpeg", {"-frames:v", "1", "-pix_fmt", "yuvj420p"}, "a.jpg"},
                    Clip{"StudioRange420", {"-c:v", "ffv1", "-pix_fmt", "yuv420p"}, "a.mkv"},
                    Clip{"StudioRange422", {"-c:v", "ffv1", "-pix_fmt", "yuv422p"}, "a.mkv"},
                    Clip{"Hd709",
                         {"-c:v", "ffv1", "-pix_fmt", "yuv444p", "-vf",
                          "scale=out_color_matrix=bt709", "-colorspace", "bt709"},
                         "a.mkv"},
                    Clip{"TenBits", {"-c:v", "ffv1", "-pix_fmt", "yuv420p10le"}, "a.mkv"},
                    Clip{"Paletted", {}, "a.gif"}),
    [](const auto& instance) { return instance.param.name; });

// 16-bit YCbCr codes are 256 times the 8-bit codes, so both must give the same apart from rounding.
TEST(PlayPlanes, OfDeepYcbcrAgreeWithThoseInBytes) {
  const Scratch scratch;
  const std::string clip = (scratch / "a.mkv").string();
  makeWithFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=64x48", "-frames:v", "1", "-c:v", "ffv1",
                  "-pix_fmt", "yuv422p10le", clip});
  const std::string shallow = runOnFirstFrame(clip, "ycbcr422", "uint8").frame;
  const std::string deep = runOnFirstFrame(clip, "ycbcr422", "single").frame;
  ASSERT_THAT(shallow, SizeIs(64 * 48 * 2));
  ASSERT_THAT(deep, SizeIs(shallow.size() * sizeof(float)));
  for (std::size_t i = 0; i < shallow.size(); ++i) {
    float sample;
    std::memcpy(&sample, &deep[i * sizeof sample], sizeof sample);
    ASSERT_NEAR(sample * 255, static_cast<unsigned char>(shallow[i]), 0.76) << i;
  }
}

// ---- The course of a video ----

TEST(PlayVideo, KeepsItsOwnPaceAndShowsItsLastFrameAsLong) {
  const Scratch scratch;
  const Outcome outcome = runPlayer({scratch.write("a.y4m", video(6, "10:1"))});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(6));
  EXPECT_THAT(outcome.seconds, AllOf(Ge(0.6), Le(5)));
}

TEST(PlayVideo, SendsEveryFrameOnceInOrder) {
  const Scratch scratch;
  const std::string clip = scratch.write("a.y4m", video(20, "25:1"));
  const Outcome all = runPlayer({clip, "--kind", "ycbcr422", "--fps", "max"});
  auto updates = all.callsOf("libUpdate");
  EXPECT_THAT(updates, SizeIs(20));
  std::ranges::sort(updates);
  EXPECT_EQ(std::unique(updates.begin(), updates.end()), updates.end());
  EXPECT_EQ(all.frame, std::string(16 * 8 * 2, 20));
  const Outcome some = runPlayer({clip, "--kind", "ycbcr422", "--fps", "max", "--frames", "7"});
  EXPECT_EQ(some.frame, std::string(16 * 8 * 2, 7));
}

TEST(PlayVideo, OnStandardInputIsRead) {
  const Scratch scratch;
  const Outcome outcome =
      runPlayer({"-", "--fps", "max"}, Setting{.input = scratch.write("a.y4m", video(3, "25:1"))});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(3));
  EXPECT_THAT(outcome.callsOf("libCreate"), ElementsAre(HasSubstr("title=\"standard input\"")));
}

TEST(PlayVideo, OnStandardInputIsReadBesideAFolderOfThatName) {
  const Scratch scratch;
  std::filesystem::create_directory(scratch / "-");
  const Outcome outcome =
      runPlayer({"-", "--fps", "max"}, Setting{.input = scratch.write("a.y4m", video(3, "25:1")),
                                               .folder = (scratch / "").string()});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(3));
}

TEST(PlayVideo, WhoseFramesChangeTheirSizeKeepsTheFirst) {
  const Scratch scratch;
  makeWithFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=64x48", "-frames:v", "1",
                  (scratch / "large.jpg").string()});
  makeWithFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=30x90", "-frames:v", "1",
                  (scratch / "other.jpg").string()});
  const std::string clip =
      scratch.write("a.mjpeg", scratch.read("large.jpg") + scratch.read("other.jpg"));
  const Outcome outcome = runPlayer({clip, "--fps", "max"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(2));
  EXPECT_THAT(outcome.callsOf("description"), ElementsAre(HasSubstr("widths=64,64,64")));
  EXPECT_THAT(outcome.frame, SizeIs(64 * 48 * 3));
}

// ---- Images stay ----

class PlayImage : public testing::Test {
 protected:
  Scratch scratch_;
  const std::string image_ = scratch_.write("a.ppm", "P6 3 2 255\n" + kPixels);
};

TEST_F(PlayImage, StaysUntilItsWindowIsClosed) {
  const Outcome outcome = runPlayer({image_}, Setting{.closeAfter = 0.5});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(1));
  EXPECT_THAT(outcome.seconds, AllOf(Ge(0.5), Le(5)));
}

TEST_F(PlayImage, StaysForTheDuration) {
  const Outcome outcome = runPlayer({image_, "--duration", "0.6"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(1));
  EXPECT_THAT(outcome.seconds, AllOf(Ge(0.6), Le(5)));
}

TEST_F(PlayImage, DoesNotStayAgainstTheUsersWord) {
  EXPECT_THAT(runPlayer({image_, "--hold", "0"}).seconds, Le(5));
  EXPECT_THAT(runPlayer({image_, "--frames", "2"}).seconds, Le(5));
}

TEST_F(PlayImage, MayFollowAHoldWithoutSeconds) {
  const Outcome outcome =
      runPlayer({"--frames", "1", "--hold", image_}, Setting{.closeAfter = 0.5});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.seconds, Ge(0.5));
  EXPECT_THAT(outcome.callsOf("libCreate"), ElementsAre(HasSubstr("title=\"a.ppm\"")));
}

// ---- Files that are not pictures ----

void expectRefused(const std::string& source, const std::string& told) {
  const Outcome outcome = runPlayer({source});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "framesink-play: " + source + ": " + told + "\n");
  EXPECT_THAT(outcome.callsOf("libCreate"), IsEmpty());
}

TEST(PlaySource, ThatIsMissingIsTold) {
  expectRefused("/nonexistent/clip.mp4", "No such file or directory");
}

TEST(PlaySource, ThatIsAFolderIsTold) {
  const Scratch scratch;
  expectRefused((scratch / "").string(), "is a directory");
}

TEST(PlaySource, ThatIsTextIsTold) {
  const Scratch scratch;
  expectRefused(scratch.write("a.mp4", "hello\n"), "not a video or an image");
}

TEST(PlaySource, ThatIsEmptyIsTold) {
  const Scratch scratch;
  expectRefused(scratch.write("a.mp4", ""), "not a video or an image");
}

TEST(PlaySource, ThatIsOnlySoundIsTold) {
  const Scratch scratch;
  const std::string sound = (scratch / "a.wav").string();
  makeWithFfmpeg({"-f", "lavfi", "-i", "sine=duration=0.2", sound});
  expectRefused(sound, "there is no picture in it");
}

TEST(PlaySource, ThatIsNotReadAsAPatternOfNames) {
  const Scratch scratch;
  const std::string image = scratch.write("100%d.ppm", "P6 3 2 255\n" + kPixels);
  EXPECT_EQ(runPlayer({image, "--frames", "1"}).status, 0);
}

// Makes a file with ffmpeg and returns the path of a truncated copy.
std::string cutFile(const Scratch& scratch, const std::string& name, const Arguments& making) {
  const std::string whole = (scratch / name).string();
  Arguments arguments{"-f", "lavfi", "-i", "testsrc2=size=160x120:rate=10:duration=1"};
  arguments.insert(arguments.end(), making.begin(), making.end());
  arguments.push_back(whole);
  makeWithFfmpeg(arguments);
  const std::string content = scratch.read(name);
  return scratch.write("cut-" + name, content.substr(0, content.size() * 6 / 10));
}

TEST(PlaySource, ThatIsCutBeforeAnyPictureIsTold) {
  const Scratch scratch;
  expectRefused(cutFile(scratch, "a.png", {"-frames:v", "1"}), "no picture could be read from it");
  expectRefused(cutFile(scratch, "a.mp4", {}), "not a video or an image");
}

class PlayCutSource : public testing::TestWithParam<Clip> {};

TEST_P(PlayCutSource, IsPlayedAsFarAsItGoesThenTold) {
  const Scratch scratch;
  const std::string source = cutFile(scratch, GetParam().file, GetParam().making);
  const Outcome outcome = runPlayer({source, "--fps", "max"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(Ge(1u)));
  EXPECT_THAT(outcome.err,
              testing::EndsWith("framesink-play: " + source +
                                ": damaged or cut short, not all of it could be read\n"));
  EXPECT_EQ(outcome.lastCall(), "unloaded");
}

INSTANTIATE_TEST_SUITE_P(Files, PlayCutSource,
                         testing::Values(Clip{"Jpeg", {"-frames:v", "1"}, "a.jpg"},
                                         Clip{"Mp4", {"-movflags", "faststart"}, "a.mp4"},
                                         Clip{"Matroska", {}, "a.mkv"}, Clip{"Avi", {}, "a.avi"},
                                         Clip{"TransportStream", {}, "a.ts"}),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace framesink::play
