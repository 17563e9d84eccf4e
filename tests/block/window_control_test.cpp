// Windows by name: what the host's user interface does without a block's handle.
#include <gtest/gtest.h>

#include <array>
#include <chrono>

#include "host_block.hpp"
#include "recorded_frame.hpp"
#include "shown_picture.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

constexpr Size kFrame{64, 48};

using Pair = std::array<std::int32_t, 2>;

struct PosSize {
  Pair position{111, 222};
  Pair size{333, 444};
  bool operator==(const PosSize&) const = default;
};

std::ostream& operator<<(std::ostream& out, const PosSize& p) {
  return out << p.size[0] << "x" << p.size[1] << "+" << p.position[0] << "+" << p.position[1];
}

constexpr PosSize kUntouched{};
constexpr PosSize kClosed{{-2, -2}, {-2, -2}};

PosSize posSize(const std::string& name) {
  PosSize result;
  getWindowPosSize(name.c_str(), result.position.data(), result.size.data());
  return result;
}

struct OpenRequest {
  std::uint8_t fullscreen = 0;
  std::array<std::uint32_t, 2> position{60, 80};
  std::array<std::uint32_t, 2> size{200, 150};
  std::uint8_t useWindowSize = 0;
};

void openWindow(const std::string& name, const OpenRequest& request = {}) {
  createVideoWindow(name.c_str(), request.fullscreen, request.position.data(), request.size.data(),
                    request.useWindowSize);
}

class WindowControlBase {
 protected:
  explicit WindowControlBase(std::uint8_t isSynchronous) : synchronous(isSynchronous) {}

  // Presses the window's close button. A synchronous server handles that in the host's next update.
  testing::AssertionResult closes(XClient& x) {
    if (!x.closeButton(x.waitForWindow(name))) return testing::AssertionFailure() << x.lastError();
    const bool gone = waitUntil([&] {
      update();
      return isPlayerOpen(name.c_str()) == 0;
    });
    return gone ? testing::AssertionSuccess() : testing::AssertionFailure() << "stays open";
  }
  void update(std::uint32_t colour = 0x808080) { block.update(plainPlanes(colour, kFrame)); }

  const std::uint8_t synchronous;
  const std::string name = BlockRequest::testName();
  HostBlock block{describe(kRgb, FRAMESINK_UINT8, kFrame), {.synchronous = synchronous}};
};

class WindowControl : public BareXTest,
                      public testing::WithParamInterface<std::uint8_t>,
                      protected WindowControlBase {
 protected:
  WindowControl() : WindowControlBase(GetParam()) {}
  Window window() { return x.waitForWindow(name); }
};

class ThreadedWindowControl : public BareXTest, protected WindowControlBase {
 protected:
  ThreadedWindowControl() : WindowControlBase(0) {}
  Window window() { return x.waitForWindow(name); }
};

class SynchronousWindowControl : public BareXTest, protected WindowControlBase {
 protected:
  SynchronousWindowControl() : WindowControlBase(1) {}
  Window window() { return x.waitForWindow(name); }
};

// With a window manager, as on a user's desktop.
class ManagedWindowControl : public ManagedXTest,
                             public testing::WithParamInterface<std::uint8_t>,
                             protected WindowControlBase {
 protected:
  ManagedWindowControl() : WindowControlBase(GetParam()) {}
  Window window() { return x.waitForWindow(name); }
};

std::string displayName(const testing::TestParamInfo<std::uint8_t>& info) {
  return info.param != 0 ? "Synchronous" : "Threaded";
}
INSTANTIATE_TEST_SUITE_P(Display, WindowControl, testing::Values(0, 1), displayName);
INSTANTIATE_TEST_SUITE_P(Display, ManagedWindowControl, testing::Values(0, 1), displayName);

// ---- createVideoWindow ----

TEST_P(WindowControl, CreateForAnUnknownNameDoesNothingAndReturnsAtOnce) {
  const std::string unknown = name + " unknown";
  const auto start = std::chrono::steady_clock::now();
  openWindow(unknown);
  EXPECT_LT(std::chrono::steady_clock::now() - start, kAtOnce);
  EXPECT_EQ(isPlayerOpen(unknown.c_str()), 0);
  EXPECT_EQ(posSize(unknown), kUntouched);
  EXPECT_TRUE(staysSo([&] { return !x.findWindow(unknown); }));
}

TEST_P(WindowControl, CreateWithBothFlagsClearTakesTheFramesSizeNotTheCallers) {
  openWindow(name);
  EXPECT_EQ(x.geometry(window()), (Geometry{60, 80, 64, 48}));
  EXPECT_EQ(posSize(name), (PosSize{{60, 80}, {64, 48}}));
}

TEST_P(WindowControl, CreateWithUseWindowSizeTakesTheCallersSize) {
  openWindow(name, {.useWindowSize = 0xFF});
  EXPECT_EQ(x.geometry(window()), (Geometry{60, 80, 200, 150}));
}

TEST_P(ManagedWindowControl, CreateFullscreenCoversTheScreen) {
  openWindow(name, {.fullscreen = 2});
  EXPECT_TRUE(waitUntil([&] {
    update();
    return x.isFullscreen(window());
  }));
  // The size to which the window returns from full screen.
  EXPECT_EQ(posSize(name).size, (Pair{200, 150}));
}

TEST_P(WindowControl, CreatedWindowBearsTheNameAsItsTitle) {
  openWindow(name);
  EXPECT_EQ(x.title(window()), name);
}

TEST_P(WindowControl, CreatedWindowShowsTheBlocksFrames) {
  openWindow(name);
  update(0x20A0E0);
  EXPECT_TRUE(shows(x, window(), plainPicture(0x20A0E0, kFrame)));
}

TEST_P(WindowControl, CreateAfterTheUserClosedTheWindowOpensAnother) {
  openWindow(name);
  ASSERT_TRUE(closes(x));
  openWindow(name, {.position = {300, 200}});
  EXPECT_EQ(isPlayerOpen(name.c_str()), 1);
  update(0x20A0E0);
  EXPECT_TRUE(shows(x, name, plainPicture(0x20A0E0, kFrame)));
  EXPECT_TRUE(waitUntil([&] { return x.windows(name).size() == 1; }));
  EXPECT_EQ(x.geometry(window()), (Geometry{300, 200, 64, 48}));
}

TEST_P(WindowControl, CreateOfAnOpenWindowMakesNoOther) {
  openWindow(name);
  const Window before = window();
  openWindow(name, {.fullscreen = 1, .position = {5, 5}, .useWindowSize = 1});
  update();
  EXPECT_TRUE(staysSo([&] { return x.windows(name) == std::vector{before}; }));
  EXPECT_EQ(x.geometry(before), (Geometry{60, 80, 64, 48}));
}

TEST_P(ManagedWindowControl, CreateOfAnOpenWindowBringsItToTheFront) {
  openWindow(name);
  update();
  const Window lower = window();
  const std::string upperName = name + " upper";
  const HostBlock upper(
      describe(kRgb, FRAMESINK_UINT8, kFrame),
      {.name = upperName, .title = upperName, .openAtStart = 1, .synchronous = synchronous});
  const Window above = x.waitForWindow(upperName);
  ASSERT_TRUE(x.raise(above));
  ASSERT_TRUE(waitUntil([&] { return x.stackingTop() == above; }));
  openWindow(name);
  EXPECT_TRUE(waitUntil([&] { return x.stackingTop() == lower; }));
}

TEST_P(WindowControl, CreateWithoutPositionOrSizeDoesNothing) {
  const std::uint32_t pair[2] = {60, 80};
  createVideoWindow(name.c_str(), 0, nullptr, pair, 1);
  createVideoWindow(name.c_str(), 0, pair, nullptr, 0);
  createVideoWindow(name.c_str(), 0, nullptr, nullptr, 0);
  EXPECT_EQ(isPlayerOpen(name.c_str()), 0);
}

// ---- getWindowPosSize ----

TEST_P(WindowControl, PosSizeOfARegisteredNameThatNeverHadAWindowIsMinusTwo) {
  EXPECT_EQ(posSize(name), kClosed);
}

TEST_P(WindowControl, PosSizeAfterTheUserClosedTheWindowIsMinusTwo) {
  openWindow(name);
  ASSERT_TRUE(closes(x));
  EXPECT_EQ(posSize(name), kClosed);
}

TEST_P(WindowControl, PosSizeOfAnUnknownNameIsLeftUnchanged) {
  EXPECT_EQ(posSize(name + " unknown"), kUntouched);
}

TEST_P(WindowControl, PosSizeSkipsAPairThatIsNull) {
  openWindow(name);
  PosSize result;
  getWindowPosSize(name.c_str(), result.position.data(), nullptr);
  EXPECT_EQ(result, (PosSize{{60, 80}, {333, 444}}));
  getWindowPosSize(name.c_str(), nullptr, result.size.data());
  EXPECT_EQ(result, (PosSize{{60, 80}, {64, 48}}));
  getWindowPosSize(name.c_str(), nullptr, nullptr);
}

TEST_P(WindowControl, PosSizeFollowsTheUsersResizing) {
  openWindow(name);
  ASSERT_TRUE(x.resize(window(), 321, 234));
  EXPECT_TRUE(waitUntil([&] {
    update();
    return posSize(name).size == Pair{321, 234};
  }));
}

TEST_P(ManagedWindowControl, PosSizeFollowsTheUsersMoving) {
  openWindow(name);
  ASSERT_TRUE(x.move(window(), 400, 300));
  EXPECT_TRUE(waitUntil([&] {
    update();
    const Geometry place = x.geometry(window());
    return place.x >= 400 && posSize(name).position == Pair{place.x, place.y};
  }));
}

// The place is exact but for the border and the title bar, because the window manager places its
// frame where the picture was.
TEST_P(ManagedWindowControl, FreshWindowOpensInThePlaceAndSizeOfTheOld) {
  openWindow(name);
  const Window before = window();
  ASSERT_TRUE(x.move(before, 400, 300));
  ASSERT_TRUE(x.resize(before, 200, 120));
  ASSERT_TRUE(waitUntil([&] {
    update();
    const PosSize now = posSize(name);
    const Geometry place = x.geometry(before);
    return now == PosSize{{place.x, place.y}, {200, 120}} && place.x >= 400;
  }));
  const PosSize left = posSize(name);
  const HostBlock fresh(describe(kRgb, FRAMESINK_UINT8, {32, 20}),
                        {.useWindowSize = 1, .synchronous = synchronous});
  EXPECT_TRUE(waitUntil([&] { return !x.exists(before); }));
  const PosSize now = posSize(name);
  EXPECT_EQ(now.size, left.size);
  EXPECT_NEAR(now.position[0], left.position[0], 40);
  EXPECT_NEAR(now.position[1], left.position[1], 40);
}

// ---- isPlayerOpen ----

TEST_P(WindowControl, IsOpenFollowsTheWindow) {
  EXPECT_EQ(isPlayerOpen((name + " unknown").c_str()), 0);
  EXPECT_EQ(isPlayerOpen(name.c_str()), 0);
  openWindow(name);
  EXPECT_EQ(isPlayerOpen(name.c_str()), 1);
  ASSERT_TRUE(closes(x));
  EXPECT_EQ(isPlayerOpen(name.c_str()), 0);
}

TEST_P(WindowControl, IsOpenFindsABlankWhereTheNameAskedForHasALineFeed) {
  const std::string blank = name + " with a blank";
  const std::string lineFeed = name + "\nwith\na\nblank";
  const HostBlock other(describe(kRgb, FRAMESINK_UINT8, kFrame),
                        {.name = blank, .openAtStart = 1, .synchronous = synchronous});
  EXPECT_EQ(isPlayerOpen(lineFeed.c_str()), 1);
  EXPECT_EQ(isPlayerOpen(name.c_str()), 0);
}

TEST_P(WindowControl, NamesRegisteredWithALineFeedAreFoundWithABlank) {
  const HostBlock other(
      describe(kRgb, FRAMESINK_UINT8, kFrame),
      {.name = name + "\nwith a line feed", .openAtStart = 1, .synchronous = synchronous});
  EXPECT_EQ(isPlayerOpen((name + " with a line feed").c_str()), 1);
  EXPECT_EQ(isPlayerOpen((name + "\nwith\na line feed").c_str()), 1);
}

TEST_P(WindowControl, NamesCompareCaseSensitivelyAndWhole) {
  openWindow(name);
  EXPECT_EQ(isPlayerOpen(name.substr(1).c_str()), 0);
  EXPECT_EQ(isPlayerOpen((name + "x").c_str()), 0);
  std::string lower = name;
  lower[0] = static_cast<char>(lower[0] ^ 0x20);
  EXPECT_EQ(isPlayerOpen(lower.c_str()), 0);
}

// ---- destroyVideoWindow ----

TEST_F(ThreadedWindowControl, DestroyClosesTheWindowAndForgetsTheName) {
  openWindow(name);
  const Window before = window();
  destroyVideoWindow(name.c_str());
  EXPECT_EQ(isPlayerOpen(name.c_str()), 0);
  EXPECT_EQ(posSize(name), kUntouched);
  EXPECT_TRUE(waitUntil([&] { return !x.exists(before); }));
  openWindow(name);
  EXPECT_EQ(isPlayerOpen(name.c_str()), 0);
  update();
}

// The library's own decision: the close request always goes to the threaded server.
TEST_F(SynchronousWindowControl, DestroyForgetsTheNameAndLeavesTheWindow) {
  openWindow(name);
  update(0x20A0E0);
  const Window before = window();
  destroyVideoWindow(name.c_str());
  EXPECT_EQ(isPlayerOpen(name.c_str()), 0);
  EXPECT_EQ(posSize(name), kUntouched);
  for (int i = 0; i < 20; ++i) update(0xFF0000);
  EXPECT_TRUE(shows(x, before, plainPicture(0x20A0E0, kFrame)));
}

TEST_P(WindowControl, DestroyOfAnUnknownNameIsIgnored) {
  openWindow(name);
  destroyVideoWindow((name + " unknown").c_str());
  destroyVideoWindow("");
  EXPECT_EQ(isPlayerOpen(name.c_str()), 1);
}

// ---- renameVideoWindow ----

TEST_P(WindowControl, RenamedWindowIsReportedUnderTheNewName) {
  openWindow(name);
  const Window before = window();
  const std::string newName = name + " renamed";
  renameVideoWindow(name.c_str(), newName.c_str(), name.c_str());
  EXPECT_EQ(isPlayerOpen(newName.c_str()), 1);
  EXPECT_EQ(isPlayerOpen(name.c_str()), 0);
  EXPECT_EQ(posSize(newName), (PosSize{{60, 80}, {64, 48}}));
  EXPECT_TRUE(x.exists(before));
}

TEST_F(ThreadedWindowControl, RenameGivesTheWindowTheNewTitle) {
  openWindow(name);
  const Window before = window();
  renameVideoWindow(name.c_str(), (name + " renamed").c_str(), "new\ntitle");
  EXPECT_TRUE(waitUntil([&] { return x.title(before) == "new title"; })) << x.title(before);
}

TEST_F(SynchronousWindowControl, RenameLeavesTheOldTitle) {
  openWindow(name);
  const Window before = window();
  renameVideoWindow(name.c_str(), (name + " renamed").c_str(), "new title");
  update();
  EXPECT_EQ(x.title(before), name);
}

// The library's own decision: the title always goes to the threaded server, where another window
// may have the same id.
TEST_F(SynchronousWindowControl, RenameGivesTheTitleToTheThreadedWindowOfThatId) {
  openWindow(name);
  const std::string other = name + " threaded";
  const HostBlock threaded(describe(kRgb, FRAMESINK_UINT8, kFrame),
                           {.name = other, .title = other, .openAtStart = 1});
  const Window otherWindow = x.waitForWindow(other);
  ASSERT_EQ(videoWindowRegistry().playerIdOf(name), videoWindowRegistry().playerIdOf(other));
  renameVideoWindow(name.c_str(), (name + " renamed").c_str(), "new title");
  EXPECT_TRUE(waitUntil([&] { return x.title(otherWindow) == "new title"; }));
}

TEST_P(WindowControl, RenameReplacesLineFeedsInTheNewName) {
  openWindow(name);
  renameVideoWindow(name.c_str(), (name + "\nrenamed").c_str(), "");
  EXPECT_EQ(isPlayerOpen((name + " renamed").c_str()), 1);
}

TEST_P(WindowControl, RenameOfAnUnknownNameIsIgnored) {
  renameVideoWindow((name + " unknown").c_str(), (name + " renamed").c_str(), "title");
  EXPECT_EQ(posSize(name + " renamed"), kUntouched);
  EXPECT_EQ(posSize(name), kClosed);
}

TEST_P(WindowControl, FramesOfABlockWhoseRecordWasRenamedAreDropped) {
  openWindow(name);
  update(0x20A0E0);
  const Window before = window();
  ASSERT_TRUE(shows(x, before, plainPicture(0x20A0E0, kFrame)));
  renameVideoWindow(name.c_str(), (name + " renamed").c_str(), name.c_str());
  update(0xFF0000);
  update(0xFF0000);
  EXPECT_EQ(recordedFrame(name + " renamed"),
            converted(kRgb, FRAMESINK_UINT8, plainPlanes(0x20A0E0, kFrame), kFrame));
  EXPECT_TRUE(shows(x, before, plainPicture(0x20A0E0, kFrame)));
}

// ---- Null names ----

TEST_P(WindowControl, NullNamesAreUnknownOnes) {
  const std::uint32_t pair[2] = {60, 80};
  PosSize result;
  createVideoWindow(nullptr, 0, pair, pair, 0);
  getWindowPosSize(nullptr, result.position.data(), result.size.data());
  EXPECT_EQ(result, kUntouched);
  EXPECT_EQ(isPlayerOpen(nullptr), 0);
  renameVideoWindow(nullptr, nullptr, nullptr);
  renameVideoWindow(nullptr, "new", "title");
  destroyVideoWindow(nullptr);
  EXPECT_EQ(posSize(name), kClosed);
}

}  // namespace
}  // namespace framesink::test
