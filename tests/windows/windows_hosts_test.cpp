// Windows programs that use the DLL.
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>

#include "host_process.hpp"
#include "shown_picture.hpp"
#include "support/temporary_folder.hpp"
#include "support/x_fixtures.hpp"
#include "test_frame.hpp"
#include "wine.hpp"

namespace framesink::test {
namespace {

namespace files = std::filesystem;

constexpr Size kFrame{64, 48};

// Managed, because Wine waits for a window manager's answers.
class WindowsHosts : public ManagedXTest {};

TEST_F(WindowsHosts, WalkTheWholeLifecycle) {
  HostProcess host("lifecycle_host");
  for (const char* name : {"threaded", "synchronous"}) {
    ASSERT_TRUE(host.says(name));
    const Window window = x.waitForWindow(name);
    EXPECT_TRUE(shows(x, window, plainPicture(0x3060C0, kFrame)));
    EXPECT_EQ(x.geometry(window), (Geometry{100, 120, 64, 48}));
    EXPECT_TRUE(x.closeButton(window)) << x.lastError();
  }
  EXPECT_TRUE(host.endsWith(0, kWineDeadline));
}

// ---- Places and sizes ---------------------------------------------------------------------------

class WindowsPlaces : public WindowsHosts, public testing::WithParamInterface<bool> {
 protected:
  // Waits until the host has printed the window's place and size.
  bool isTold(HostProcess& host, Window window) {
    return waitUntil([&] {
      const Geometry at = x.geometry(window);
      std::ostringstream line;
      line << at.width << " x " << at.height << " at " << at.x << ", " << at.y;
      return host.hasSaid(line.str());
    });
  }
};

INSTANTIATE_TEST_SUITE_P(Display, WindowsPlaces, testing::Bool(), [](const auto& test) {
  return std::string(test.param ? "Synchronous" : "Threaded");
});

TEST_P(WindowsPlaces, AreThoseOfThePictureWhereverTheUserMovesIt) {
  HostProcess host("placed_host", {GetParam() ? "1" : "0"});
  const Window window = x.waitForWindow("placed", kWineDeadline);
  EXPECT_TRUE(waitUntil([&] { return x.geometry(window).y > 0; }));
  EXPECT_TRUE(isTold(host, window)) << host.output();
  EXPECT_TRUE(x.move(window, 400, 300));
  EXPECT_TRUE(waitUntil([&] { return x.geometry(window).y >= 300; }));
  EXPECT_TRUE(isTold(host, window)) << host.output();
  EXPECT_TRUE(x.resize(window, 320, 200));
  EXPECT_TRUE(waitUntil([&] { return x.geometry(window).width == 320; }));
  EXPECT_TRUE(isTold(host, window)) << host.output();
  EXPECT_TRUE(x.closeButton(window)) << x.lastError();
  EXPECT_TRUE(host.endsWith(0, kWineDeadline));
}

// ---- Focus and titles ---------------------------------------------------------------------------

class WindowsTalk : public WindowsHosts, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Host, WindowsTalk, testing::Values("polite", "busy"),
                         [](const auto& test) { return std::string(test.param); });

TEST_P(WindowsTalk, RaisesAndRenamesWindowsOfAnotherThreadWithoutWaitingForLong) {
  HostProcess host("talk_host", {GetParam()});
  EXPECT_TRUE(host.endsWith(0, kWineDeadline));
  std::cout << host.output();
}

// ---- Memory that runs out -----------------------------------------------------------------------

TEST_F(WindowsHosts, CatchWhatLibCreateThrows) {
  HostProcess host("catching_host", {"catch"});
  EXPECT_TRUE(host.says("caught"));
  EXPECT_TRUE(host.endsWith(0, kWineDeadline));
}

TEST_F(WindowsHosts, EndWhenTheyCannotCatchIt) {
  constexpr int kAbort = 3;
  HostProcess host("catching_host", {"uncaught"});
  EXPECT_TRUE(host.endsNoisilyWith(kAbort, kWineDeadline));
  EXPECT_FALSE(host.hasSaid("created"));
}

// ---- A host's own media library -----------------------------------------------------------------

class WindowsRanges : public WindowsHosts {
 protected:
  // Copies the library into a folder with another pixkit; returns the copy's path.
  std::string libraryBeside(const std::string& pixkit) {
    for (const char* file : {"framesink.dll", "SDL2.dll"}) {
      files::copy(files::path(FRAMESINK_LIBRARY).replace_filename(file), folder.path());
    }
    files::copy(pixkit, folder.path());
    return folder.path() + "/framesink.dll";
  }

  TemporaryFolder folder;
};

// That pixkit's singles range from 10 to 20, so 15 is a middle grey. The host shows 8 x 6 such
// samples in the middle of 16 x 12.
TEST_F(WindowsRanges, AreThoseOfThePixkitBesideTheLibrary) {
  const std::string library = libraryBeside(OTHER_PIXKIT);
  ChildProcess host = startOnWindows(HOST_FOLDER "/ranges_host.exe", {library, "15"});
  Image picture{16, 12, std::vector<std::uint32_t>(16 * 12, 0)};
  for (std::size_t row = 3; row < 9; ++row) {
    for (std::size_t column = 4; column < 12; ++column) {
      picture.pixels[16 * row + column] = 0x808080;
    }
  }
  const Window window = x.waitForWindow("ranges", kWineDeadline);
  EXPECT_TRUE(shows(x, window, picture));
  EXPECT_TRUE(x.closeButton(window)) << x.lastError();
  const auto status = host.wait(kWineDeadline);
  EXPECT_TRUE(status && status->code == 0) << host.standardError();
}

}  // namespace
}  // namespace framesink::test
