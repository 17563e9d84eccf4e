// Tests that do not concern the window manager itself run without one and with one.
#include "support/x_client.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/plain_window.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kShort{50};
constexpr int kEscapeKeycode = 9;
constexpr int kLetterAKeycode = 38;

class XClientTest : public XTest, public testing::WithParamInterface<bool> {
 protected:
  XClientTest() : XTest(GetParam()) {}
};
INSTANTIATE_TEST_SUITE_P(Windows, XClientTest, testing::Bool(), [](const auto& parameter) {
  return std::string(parameter.param ? "Managed" : "Bare");
});

class XClientBareTest : public BareXTest {};
class XClientManagedTest : public ManagedXTest {};

TEST_P(XClientTest, FindsAWindowByItsTitle) {
  const PlainWindow other("other");
  const PlainWindow window("wänted");
  EXPECT_EQ(x.waitForWindow("wänted"), window.id());
  EXPECT_EQ(x.findWindow("wänted"), window.id());
  EXPECT_EQ(x.title(window.id()), "wänted");
  EXPECT_EQ(x.findWindow("unknown"), std::nullopt);
}

TEST_P(XClientTest, FindsAWindowThatHasOnlyTheOlderName) {
  const PlainWindow window("old", {.oldNameOnly = true});
  EXPECT_EQ(x.waitForWindow("old"), window.id());
}

TEST_P(XClientTest, ListsEveryWindowWithTheTitle) {
  const PlainWindow first("same");
  const PlainWindow second("same");
  const PlainWindow third("different");
  EXPECT_EQ(x.windows("same").size(), 2U);
}

TEST_P(XClientTest, WaitsUntilAWindowIsShown) {
  PlainWindow window("late", {.mapped = false});
  EXPECT_THROW(x.waitForWindow("late", kShort), std::runtime_error);
  EXPECT_EQ(x.findWindow("late"), window.id());
  window.map();
  EXPECT_EQ(x.waitForWindow("late"), window.id());
  EXPECT_TRUE(x.isViewable(window.id()));
}

TEST_P(XClientTest, WaitsUntilNoWindowHasTheTitle) {
  PlainWindow window("leaving");
  x.waitForWindow("leaving");
  EXPECT_FALSE(x.waitForNoWindow("leaving", kShort));
  window.destroy();
  EXPECT_TRUE(x.waitForNoWindow("leaving"));
  EXPECT_FALSE(x.exists(window.id()));
}

TEST_P(XClientTest, ReadsTheExactPixels) {
  PlainWindow window("picture");
  x.waitForWindow("picture");
  const Image picture = distinctPixels(64, 48);
  window.paint(picture);
  EXPECT_EQ(x.pixels(window.id()), picture);
  const Geometry place = x.geometry(window.id());
  const Image part = x.pixels(window.id(), {10, 20, 3, 2});
  ASSERT_EQ(part.pixels.size(), 6U);
  EXPECT_EQ(part.at(2, 1), picture.at(12, 21));
  EXPECT_EQ(x.rootPixels().at(place.x + 63, place.y + 47), picture.at(63, 47));
}

TEST_P(XClientTest, LeavesTheAlphaOutOfThePixels) {
  PlainWindow window("alpha", {.alpha = true});
  x.waitForWindow("alpha");
  window.paint(distinctPixels(64, 48, 0x80));
  EXPECT_EQ(x.pixels(window.id()), distinctPixels(64, 48));
}

TEST_P(XClientTest, PressesTheCloseButton) {
  PlainWindow window("closing");
  const Window id = x.waitForWindow("closing");
  EXPECT_TRUE(x.closeButton(id));
  EXPECT_TRUE(window.waitForCloseMessage());
}

TEST_P(XClientTest, PressesKeysInTheWindowAskedFor) {
  PlainWindow other("other");
  PlainWindow window("typing");
  x.waitForWindow("other");
  const Window id = x.waitForWindow("typing");
  EXPECT_TRUE(x.pressKey(id, "Escape"));
  EXPECT_TRUE(window.waitForKey(kEscapeKeycode));
  EXPECT_TRUE(x.pressKey(id, "a"));
  EXPECT_TRUE(window.waitForKey(kLetterAKeycode));
  EXPECT_FALSE(other.sawKey());
  EXPECT_TRUE(x.pressKey(other.id(), "Escape"));
  EXPECT_TRUE(other.waitForKey(kEscapeKeycode));
  EXPECT_FALSE(window.sawKey());
}

TEST_P(XClientTest, RefusesAnUnknownKey) {
  const PlainWindow window("typing");
  EXPECT_FALSE(x.pressKey(x.waitForWindow("typing"), "NoSuchKey"));
}

TEST_P(XClientTest, ResizesAWindow) {
  PlainWindow window("sized");
  const Window id = x.waitForWindow("sized");
  EXPECT_TRUE(x.resize(id, 200, 150));
  EXPECT_TRUE(window.waitForSize(200, 150));
  EXPECT_EQ(x.geometry(id).width, 200);
  EXPECT_EQ(x.geometry(id).height, 150);
}

TEST_P(XClientTest, RaisesAWindow) {
  const PlainWindow lower("lower");
  x.waitForWindow("lower");
  const PlainWindow upper("upper");
  x.waitForWindow("upper");
  ASSERT_TRUE(waitUntil([&] { return x.stackingTop() == upper.id(); }));
  EXPECT_TRUE(x.raise(lower.id()));
  EXPECT_TRUE(waitUntil([&] { return x.stackingTop() == lower.id(); }));
}

TEST_P(XClientTest, ActivatesAWindow) {
  const PlainWindow first("first");
  const PlainWindow second("second");
  x.waitForWindow("first");
  x.waitForWindow("second");
  if (x.hasWindowManager()) {  // It gives a new window the focus some time after showing it.
    ASSERT_TRUE(waitUntil([&] { return x.activeWindow() == second.id(); }));
  }
  for (const Window id : {first.id(), second.id(), first.id()}) {
    EXPECT_TRUE(x.activate(id));
    EXPECT_TRUE(x.hasFocus(id));
    EXPECT_TRUE(waitUntil([&] { return x.activeWindow() == id; }));
  }
  EXPECT_FALSE(x.hasFocus(second.id()));
}

TEST_P(XClientTest, CoversAndUncoversAWindow) {
  PlainWindow window("covered");
  const Window id = x.waitForWindow("covered");
  ASSERT_TRUE(window.waitForExpose());
  const Image picture = distinctPixels(64, 48);
  window.paint(picture);
  EXPECT_TRUE(x.cover(id));
  const Image covered{64, 48, std::vector<std::uint32_t>(64 * 48, XClient::kCoverColour)};
  const Geometry place = x.geometry(id);
  EXPECT_EQ(x.rootPixels(place), covered);
  window.dropEvents();
  EXPECT_TRUE(x.uncover());
  EXPECT_TRUE(window.waitForExpose());
  window.paint(picture);
  EXPECT_EQ(x.pixels(id), picture);
  EXPECT_FALSE(x.uncover());
}

TEST_P(XClientTest, ReportsFailuresOnAWindowThatIsGone) {
  PlainWindow window("gone");
  const Window id = x.waitForWindow("gone");
  window.destroy();
  EXPECT_EQ(x.geometry(id), Geometry{});
  EXPECT_TRUE(x.pixels(id).empty());
  EXPECT_NE(x.lastError().find("BadDrawable"), std::string::npos) << x.lastError();
  EXPECT_EQ(x.title(id), "");
  EXPECT_FALSE(x.closeButton(id) || x.activate(id) || x.pressKey(id, "a") || x.resize(id, 9, 9) ||
               x.iconify(id) || x.maximise(id) || x.restore(id) || x.cover(id) ||
               x.isViewable(id) || x.hasFocus(id) || x.isFullscreen(id));
}

TEST_P(XClientTest, ReadsNoPixelsOfAHiddenWindow) {
  const PlainWindow window("hidden", {.mapped = false});
  EXPECT_TRUE(x.pixels(window.id()).empty());
  EXPECT_NE(x.lastError().find("BadMatch"), std::string::npos) << x.lastError();
}

TEST_F(XClientBareTest, SeesWhereAWindowIsAndMovesIt) {
  const PlainWindow window("placed");
  const Window id = x.waitForWindow("placed");
  EXPECT_EQ(x.geometry(id), (Geometry{60, 80, 64, 48}));
  EXPECT_TRUE(x.move(id, -5, 300));
  EXPECT_EQ(x.geometry(id), (Geometry{-5, 300, 64, 48}));
}

TEST_F(XClientManagedTest, PlacesTheFrameOfAWindow) {
  const PlainWindow window("placed");
  const Window id = x.waitForWindow("placed");
  const auto frame = x.connection().items(id, "_NET_FRAME_EXTENTS");
  ASSERT_EQ(frame.size(), 4U);
  const int left = static_cast<int>(frame[0]);
  const int top = static_cast<int>(frame[2]);
  EXPECT_GT(top, 0);
  EXPECT_TRUE(waitUntil([&] { return x.geometry(id) == Geometry{60 + left, 80 + top, 64, 48}; }));
  EXPECT_TRUE(x.move(id, 300, 200));
  EXPECT_TRUE(waitUntil([&] { return x.geometry(id) == Geometry{300 + left, 200 + top, 64, 48}; }));
}

TEST_F(XClientBareTest, TakesNoHiddenWindowForFullscreen) {
  PlainWindow window("hidden", {.place = x.screenGeometry(), .mapped = false});
  EXPECT_FALSE(x.isFullscreen(window.id()));
  window.map();
  EXPECT_TRUE(x.isFullscreen(window.id()));
}

TEST_F(XClientBareTest, TakesAWindowOverTheWholeScreenForFullscreen) {
  const PlainWindow window("covering");
  const Window id = x.waitForWindow("covering");
  EXPECT_FALSE(x.isFullscreen(id));
  ASSERT_TRUE(x.move(id, 0, 0));
  ASSERT_TRUE(x.resize(id, 1280, 1024));
  EXPECT_TRUE(x.isFullscreen(id));
}

TEST_F(XClientManagedTest, SeesAWindowGoFullscreen) {
  PlainWindow window("covering");
  const Window id = x.waitForWindow("covering");
  EXPECT_FALSE(x.isFullscreen(id));
  window.requestFullscreen();
  EXPECT_TRUE(waitUntil([&] { return x.isFullscreen(id); }));
  EXPECT_TRUE(waitUntil([&] { return x.hasState(id, "_NET_WM_STATE_FULLSCREEN"); }));
}

TEST_F(XClientManagedTest, MaximisesAndRestoresAWindow) {
  PlainWindow window("big");
  const Window id = x.waitForWindow("big");
  EXPECT_TRUE(x.maximise(id));
  EXPECT_TRUE(waitUntil([&] { return x.isMaximised(id) && x.geometry(id).width > 1000; }));
  EXPECT_TRUE(x.restore(id));
  EXPECT_TRUE(waitUntil([&] { return !x.isMaximised(id) && x.geometry(id).width == 64; }));
}

TEST_F(XClientManagedTest, IconifiesAndRestoresAWindow) {
  const PlainWindow window("small");
  const Window id = x.waitForWindow("small");
  EXPECT_TRUE(x.iconify(id));
  EXPECT_TRUE(waitUntil([&] { return x.isIconified(id) && !x.isViewable(id); }));
  EXPECT_TRUE(x.restore(id));
  EXPECT_TRUE(waitUntil([&] { return !x.isIconified(id) && x.isViewable(id); }));
}

TEST_F(XClientBareTest, NeedsAWindowManagerForTheSizeStates) {
  const PlainWindow window("plain");
  const Window id = x.waitForWindow("plain");
  EXPECT_FALSE(x.iconify(id));
  EXPECT_FALSE(x.maximise(id));
  EXPECT_FALSE(x.restore(id));
}

TEST(XClient, OutlivesItsServer) {
  XServer own;
  XClient client(own.display());
  const Window root = client.connection().root();
  EXPECT_TRUE(client.isViewable(root));
  kill(own.pid(), SIGTERM);
  EXPECT_TRUE(waitUntil([&] { return !client.isViewable(root); }));
  EXPECT_TRUE(client.rootPixels().empty());
  EXPECT_TRUE(client.windows("any").empty());
  EXPECT_FALSE(client.move(root, 1, 1));
  EXPECT_FALSE(client.hasWindowManager());
  EXPECT_NE(client.lastError().find("lost"), std::string::npos) << client.lastError();
}

TEST(XClient, SaysThatThereIsNoServer) { EXPECT_THROW(XClient(":54321"), std::runtime_error); }

}  // namespace
}  // namespace framesink::test
