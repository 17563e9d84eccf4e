// framesink-play with the real library: a clip's last frame, read back from the X server pixel by
// pixel, is what the conversion rules make of the planes that were sent.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "../convert/oracle.hpp"
#include "support/child_process.hpp"
#include "support/temporary_folder.hpp"
#include "support/x_fixtures.hpp"

namespace framesink {
namespace {

constexpr std::int32_t kWidth = 640;
constexpr std::int32_t kHeight = 480;
constexpr std::uint32_t kUint8 = 3;

struct Kind {
  const char* name;
  std::int32_t inputKind;
};

struct Case {
  Kind kind;
  bool synchronous;
};

std::vector<std::uint8_t> fileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The frame as the window should show it, row by row, 0x00RRGGBB.
std::vector<std::uint32_t> expectedPixels(const std::vector<std::uint8_t>& sent,
                                          std::int32_t inputKind) {
  const auto* family = &oracle::kFamilies[0];
  while (family->inputKind != inputKind) ++family;
  const oracle::Frame frame{kWidth, kHeight, 1};
  const oracle::Extents extents = family->extents(frame);
  const std::uint8_t* plane = sent.data();
  std::array<const void*, 3> planes{};
  for (std::size_t i = 0; i < planes.size(); ++i) {
    planes[i] = plane;
    plane += extents.planeSamples[i];
  }
  EXPECT_EQ(sent.size(), static_cast<std::size_t>(plane - sent.data()));
  std::vector<std::uint8_t> rgb(extents.outputBytes);
  oracle::convert(*family, kUint8, planes, rgb.data(), frame);
  const std::size_t n = std::size_t{kWidth} * kHeight;
  std::vector<std::uint32_t> pixels;
  for (std::size_t row = 0; row < kHeight; ++row) {
    for (std::size_t column = 0; column < kWidth; ++column) {
      const std::size_t e = column * kHeight + row;
      pixels.push_back(static_cast<std::uint32_t>(rgb[e] << 16 | rgb[n + e] << 8 | rgb[2 * n + e]));
    }
  }
  return pixels;
}

class PlayWindowsTest : public test::BareXTest, public testing::WithParamInterface<Case> {
 protected:
  // One second of moving test picture, as a compressed clip.
  std::string clip() {
    std::string path = folder_.path() + "/clip.mp4";
    test::ChildProcess ffmpeg({"ffmpeg", "-v", "error", "-f", "lavfi", "-i",
                               "testsrc2=size=640x480:rate=30:duration=1", "-pix_fmt", "yuv420p",
                               path});
    const auto status = ffmpeg.wait(std::chrono::seconds(30));
    EXPECT_TRUE(status && status->code == 0) << ffmpeg.standardError();
    return path;
  }

  test::TemporaryFolder folder_;
};

TEST_P(PlayWindowsTest, ShowTheLastFrameOfAClipExactly) {
  const std::string dump = folder_.path() + "/frame.raw";
  std::vector<std::string> command{FRAMESINK_PLAY_PROGRAM,
                                   clip(),
                                   "--kind",
                                   GetParam().kind.name,
                                   "--title",
                                   "a clip",
                                   "--hold",
                                   "--fps",
                                   "max",
                                   "--dump-frame",
                                   dump};
  if (GetParam().synchronous) command.emplace_back("--sync");
  // SDL's record of a display thread, which is never joined, is left behind by design.
  test::ChildProcess player(command, {.environment = {"ASAN_OPTIONS=detect_leaks=0"}});
  const test::Window window = x.waitForWindow("a clip");

  // The picture stands still when the clip is over: then it is held until the window is closed.
  test::Image image = x.pixels(window);
  std::int32_t unchanged = 0;
  const auto standsStill = [&] {
    test::Image next = x.pixels(window);
    unchanged = next == image && !image.empty() ? unchanged + 1 : 0;
    image = std::move(next);
    return unchanged == 100;
  };
  ASSERT_TRUE(test::waitUntil(standsStill, std::chrono::seconds(60)));
  ASSERT_TRUE(x.closeButton(window));
  const auto status = player.wait(std::chrono::seconds(20));
  ASSERT_TRUE(status);
  EXPECT_EQ(status->code, 0) << player.standardError();

  const std::vector<std::uint32_t> expected =
      expectedPixels(fileBytes(dump), GetParam().kind.inputKind);
  ASSERT_EQ(image.pixels.size(), expected.size());
  EXPECT_TRUE(image.pixels == expected);
}

constexpr Kind kRgb{"rgb", 1};
constexpr Kind kIntensity{"intensity", 2};
constexpr Kind kYcbcr422{"ycbcr422", 3};

INSTANTIATE_TEST_SUITE_P(Kinds, PlayWindowsTest,
                         testing::Values(Case{kRgb, false}, Case{kRgb, true},
                                         Case{kIntensity, false}, Case{kIntensity, true},
                                         Case{kYcbcr422, false}, Case{kYcbcr422, true}),
                         [](const auto& test) {
                           return std::string(test.param.kind.name) +
                                  (test.param.synchronous ? "Synchronous" : "Threaded");
                         });

}  // namespace
}  // namespace framesink
