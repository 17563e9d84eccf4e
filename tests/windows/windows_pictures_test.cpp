// Compares the windows of a Windows program with the conversion rules, pixel by pixel.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "host_process.hpp"
#include "shown_picture.hpp"
#include "support/temporary_folder.hpp"
#include "support/x_fixtures.hpp"
#include "test_frame.hpp"
#include "wine.hpp"

namespace framesink::test {
namespace {

constexpr Size kFrame{160, 120};

struct Shown {
  std::string name;
  Image picture;
};

const char* nameOf(const Kind& kind) {
  return &kind == &kRgb ? "rgb" : &kind == &kIntensity ? "intensity" : "ycbcr";
}

// Writes the planes to the file that the host reads.
Shown makeFrame(const std::string& folder, const Kind& kind, std::uint32_t dataType) {
  const HostPlanes planes = randomPlanes(kind, dataType, kFrame);
  std::string name = nameOf(kind);
  name.append("-").append(std::to_string(dataType));
  std::ofstream file(folder + "/" + name, std::ios::binary);
  for (const Bytes& plane : planes.bytes) {
    file.write(reinterpret_cast<const char*>(plane.data()),
               static_cast<std::streamsize>(plane.size()));
  }
  return {name, picture(converted(kind, dataType, planes, kFrame), kFrame)};
}

class WindowsPictures : public ManagedXTest, public testing::WithParamInterface<bool> {
 protected:
  TemporaryFolder folder;
};

INSTANTIATE_TEST_SUITE_P(Display, WindowsPictures, testing::Bool(), [](const auto& test) {
  return std::string(test.param ? "Synchronous" : "Threaded");
});

TEST_P(WindowsPictures, AreThoseOfTheConversionRulesForEveryKindAndType) {
  std::vector<Shown> windows;
  for (const Kind* kind : kKinds) {
    for (std::uint32_t type = 0; type < oracle::kTypeCount; ++type) {
      windows.push_back(makeFrame(folder.path(), *kind, type));
    }
  }
  HostProcess host("pictures_host", {folder.path(), std::to_string(kFrame.width),
                                     std::to_string(kFrame.height), GetParam() ? "1" : "0"});
  for (const Shown& window : windows) {
    const Window shown = x.waitForWindow(window.name, kWineDeadline);
    EXPECT_TRUE(x.raise(shown)) << x.lastError();
    EXPECT_TRUE(shows(x, shown, window.picture)) << window.name;
  }
  for (const Shown& window : windows) {
    EXPECT_TRUE(x.closeButton(x.waitForWindow(window.name))) << x.lastError();
  }
  EXPECT_TRUE(host.endsWith(0, kWineDeadline));
}

}  // namespace
}  // namespace framesink::test
