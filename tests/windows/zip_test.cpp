// Checks what the zip contains, and that a host needs nothing else.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "shown_picture.hpp"
#include "support/x_fixtures.hpp"
#include "test_frame.hpp"
#include "unpacked_zip.hpp"
#include "wine.hpp"

namespace framesink::test {
namespace {

class WindowsZip : public testing::Test {
 protected:
  static testing::AssertionResult runs(const std::vector<std::string>& command) {
    ChildProcess program(command);
    const auto status = program.wait(kWineDeadline);
    if (status && status->code == 0) return testing::AssertionSuccess();
    return testing::AssertionFailure() << program.standardError();
  }

  // Compiles a host with the zip's headers, links it with `importLibrary` and runs it.
  void linksAHostWith(const std::string& importLibrary) {
    const std::string host = zip.path("bin/linked_host.exe");
    ASSERT_TRUE(runs({"x86_64-w64-mingw32-gcc-posix", "-Wall", "-Werror", "-I", zip.path("include"),
                      LINKED_HOST, importLibrary, "-o", host}));
    ChildProcess program = startOnWindows(host);
    const auto status = program.wait(kWineDeadline);
    EXPECT_TRUE(status && status->code == 0) << program.standardError();
    EXPECT_EQ(program.standardOutput(), "version " PROJECT_VERSION ", 0 windows, 11\r\n");
  }

  const UnpackedZip zip;
};

TEST_F(WindowsZip, HoldsWhatAHostNeedsAndNothingElse) {
  EXPECT_EQ(zip.files(),
            (std::set<std::string>{
                "README.txt", "bin/SDL2.dll", "bin/framesink-play.exe", "bin/framesink.dll",
                "bin/pixkit.dll", "include/framesink/framesink.h", "include/pixkit/pixkit.h",
                "lib/framesink.def", "lib/libframesink.dll.a", "lib/libpixkit.dll.a",
                "licences/CLI11.txt", "licences/GCC.txt", "licences/Highway.txt",
                "licences/SDL.txt", "licences/mingw-w64.txt"}));
  EXPECT_EQ(zip.strays(), std::set<std::string>());
}

// The readme lists headers and licences by their folder, all other files by name.
TEST_F(WindowsZip, IsToldOfInItsReadme) {
  const std::string readme = zip.read("README.txt");
  EXPECT_EQ(readme.find("framesink " PROJECT_VERSION " for 64-bit Windows\r\n"), 0U);
  for (std::string told : zip.files()) {
    if (told == "README.txt") continue;
    std::replace(told.begin(), told.end(), '/', '\\');
    if (told.starts_with("include") || told.starts_with("licences")) {
      told.erase(told.find('\\') + 1);
    }
    EXPECT_NE(readme.find("  " + told), std::string::npos) << told;
  }
}

TEST_F(WindowsZip, HoldsTheLicencesOfWhatIsInside) {
  for (const auto& [file, words] :
       {std::pair("CLI11", "University of Cincinnati"),
        std::pair("GCC", "RUNTIME LIBRARY EXCEPTION"), std::pair("Highway", "Apache License"),
        std::pair("SDL", "Sam Lantinga"), std::pair("mingw-w64", "winpthreads")}) {
    EXPECT_NE(zip.read(std::string("licences/") + file + ".txt").find(words), std::string::npos)
        << file;
  }
}

TEST_F(WindowsZip, LinksAHostWithItsImportLibrary) {
  linksAHostWith(zip.path("lib/libframesink.dll.a"));
}

// Other compilers' tools make their import libraries from the list of exports.
TEST_F(WindowsZip, LinksAHostWithItsListOfExports) {
  const std::string made = zip.path("lib/made.a");
  ASSERT_TRUE(
      runs({"x86_64-w64-mingw32-dlltool", "-d", zip.path("lib/framesink.def"), "-l", made}));
  linksAHostWith(made);
}

// ---- The player ---------------------------------------------------------------------------------

class WindowsPlayer : public ManagedXTest {
 protected:
  // True if the window shows more than a few colours.
  bool showsAPicture(Window window) {
    return waitUntil([&] {
      const std::vector<std::uint32_t> pixels = x.pixels(window).pixels;
      return std::set<std::uint32_t>(pixels.begin(), pixels.end()).size() > 10;
    });
  }

  const UnpackedZip zip;
};

TEST_F(WindowsPlayer, ShowsItsModelUntilTheUserHasClosedAllWindows) {
  ChildProcess player = startOnWindows(zip.path("bin/framesink-play.exe"));
  const std::vector<std::string> titles{"framesink: RGB double", "framesink: intensity single",
                                        "framesink: YUY2 uint8"};
  for (const std::string& title : titles) {
    const Window window = x.waitForWindow(title, kWineDeadline);
    EXPECT_TRUE(x.raise(window)) << x.lastError();
    EXPECT_TRUE(showsAPicture(window)) << title;
  }
  for (const std::string& title : titles) {
    EXPECT_TRUE(x.closeButton(x.waitForWindow(title))) << x.lastError();
  }
  const auto status = player.wait(kWineDeadline);
  EXPECT_TRUE(status && status->code == 0) << player.standardError();
}

TEST_F(WindowsPlayer, ShowsRawSamplesAsTheConversionRulesHaveThem) {
  constexpr Size kSize{160, 120};
  const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_SINGLE, kSize);
  const TemporaryFolder folder;
  const std::string file = folder.path() + "/samples";
  const Bytes bytes = joined(planes);
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  ChildProcess player =
      startOnWindows(zip.path("bin/framesink-play.exe"),
                     {file, "--raw", "160x120:single:rgb", "--title", "raw", "--hold"});
  waitUntil([&] { return x.findWindow("raw") || !player.isRunning(); }, kWineDeadline);
  ASSERT_TRUE(player.isRunning()) << player.standardError();
  const Window window = x.waitForWindow("raw", kWineDeadline);
  EXPECT_TRUE(shows(x, window, picture(converted(kRgb, FRAMESINK_SINGLE, planes, kSize), kSize)));
  EXPECT_TRUE(x.closeButton(window)) << x.lastError();
  const auto status = player.wait(kWineDeadline);
  EXPECT_TRUE(status && status->code == 0) << player.standardError();
}

}  // namespace
}  // namespace framesink::test
