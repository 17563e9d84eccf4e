// framesink-play with the real library: reads a clip's last frame back from the X server and
// compares every pixel with what the conversion rules give for the planes that were sent.
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

// Runs a program and expects it to succeed.
void run(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
  test::ChildProcess program(command, {.environment = environment});
  const auto status = program.wait(std::chrono::seconds(60));
  EXPECT_TRUE(status && status->code == 0) << program.standardError();
}

class PlayWindowsTest : public test::BareXTest, public testing::WithParamInterface<Case> {
 protected:
  // Makes a compressed clip of one second.
  void SetUp() override {
    run({"ffmpeg", "-v", "error", "-f", "lavfi", "-i", "testsrc2=size=640x480:rate=30:duration=1",
         "-pix_fmt", "yuv420p", clip_},
        {});
  }

  // The command that plays the clip and writes its last frame to the file `dump`.
  std::vector<std::string> player(const std::string& dump) const {
    std::vector<std::string> command{FRAMESINK_PLAY_PROGRAM,
                                     clip_,
                                     "--kind",
                                     GetParam().kind.name,
                                     "--title",
                                     "a clip",
                                     "--fps",
                                     "max",
                                     "--dump-frame",
                                     dump};
    if (GetParam().synchronous) command.emplace_back("--sync");
    return command;
  }

  test::TemporaryFolder folder_;
  const std::string clip_ = folder_.path() + "/clip.mp4";
};

// By design, SDL's record of the display thread remains, because nobody joins that thread.
const std::string kNoLeaks = "ASAN_OPTIONS=detect_leaks=0";

// Plays the clip twice. The first run, without a screen, finds out what the last frame is.
TEST_P(PlayWindowsTest, ShowTheLastFrameOfAClipExactly) {
  const std::string dumps[] = {folder_.path() + "/first.raw", folder_.path() + "/second.raw"};
  run(player(dumps[0]), {kNoLeaks, "SDL_VIDEODRIVER=dummy"});
  const std::vector<std::uint8_t> sent = fileBytes(dumps[0]);
  const auto expected = expectedPixels(sent, GetParam().kind.inputKind);

  auto command = player(dumps[1]);
  command.emplace_back("--hold");
  test::ChildProcess player(command, {.environment = {kNoLeaks}});
  const test::Window window = x.waitForWindow("a clip");
  const auto isShown = [&] { return x.pixels(window).pixels == expected; };
  EXPECT_TRUE(test::waitUntil(isShown, std::chrono::seconds(60)));
  ASSERT_TRUE(x.closeButton(window));
  const auto status = player.wait(std::chrono::seconds(20));
  ASSERT_TRUE(status);
  EXPECT_EQ(status->code, 0) << player.standardError();
  EXPECT_TRUE(fileBytes(dumps[1]) == sent);
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
