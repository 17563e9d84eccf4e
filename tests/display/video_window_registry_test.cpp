// Records and names, without a screen. Run each test in a separate process, because a process has
// one server of each kind.
#include "display/video_window_registry.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <new>
#include <string>

#include "display/server_instances.hpp"
#include "pass_stepper.hpp"
#include "server_fixtures.hpp"
#include "support/allocations.hpp"
#include "support/capture_stderr.hpp"

namespace framesink::test {
namespace {

WindowRequest request(Size frameSize, Size windowSize, bool fullscreen = false) {
  return {.title = "name",
          .frameSize = frameSize,
          .geometry = {kPlace, windowSize},
          .useWindowSize = true,
          .fullscreen = fullscreen};
}

class VideoWindowRegistryTest : public DummyVideoTest {
 protected:
  struct PosSize {
    std::int32_t position[2];
    std::int32_t size[2];
  };
  PosSize posSizeOf(const VideoWindow& window) const {
    PosSize result{{1, 1}, {1, 1}};
    registry.getVideoWindowPosSize(window, result.position, result.size);
    return result;
  }
  bool isNotOpen(const VideoWindow& window) const {
    const PosSize result = posSizeOf(window);
    return result.position[0] == -2 && result.position[1] == -2 && result.size[0] == -2 &&
           result.size[1] == -2;
  }
  VideoWindow* openRecord(const std::string& name, bool synchronous = false) {
    VideoWindow* window = registry.registerVideoWindow(name, kFrameSize, synchronous);
    registry.openVideoWindow(*window, request(kFrameSize, {320, 240}));
    EXPECT_TRUE(registry.isVideoWindowOpen(*window));
    return window;
  }
  // Waits until the display thread has made that call.
  bool isCalled(const std::string& function) const {
    return waitUntil([&] { return recorder.count(function) > 0; });
  }
  // Waits until the display thread has removed the player from the threaded server.
  static bool awaitClosed(std::uint32_t player) {
    return waitUntil([&] { return !threadedServer().windowGeometry(player); });
  }

  VideoWindowRegistry registry;
};

// ---- Records ----

TEST_F(VideoWindowRegistryTest, KnowsNobodyAtFirst) {
  EXPECT_EQ(registry.findVideoWindow("name"), nullptr);
  EXPECT_EQ(registry.frameWidthOf("name"), 0U);
  EXPECT_EQ(registry.frameHeightOf("name"), 0U);
  EXPECT_EQ(registry.frameBufferOf("name"), nullptr);
  EXPECT_EQ(registry.playerIdOf("name"), -1);
}

TEST_F(VideoWindowRegistryTest, RegistersARecordWithAZeroedFrameBuffer) {
  VideoWindow* window = registry.registerVideoWindow("name", {3, 2}, 1);
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(window->name, "name");
  EXPECT_EQ(window->synchronous, 1);
  EXPECT_EQ(window->frameWidth, 3U);
  EXPECT_EQ(window->frameHeight, 2U);
  EXPECT_EQ(window->server, nullptr);
  EXPECT_EQ(window->playerId, -1);
  EXPECT_TRUE(std::all_of(window->frameBuffer.get(), window->frameBuffer.get() + 18,
                          [](std::uint8_t byte) { return byte == 0; }));
  EXPECT_EQ(registry.findVideoWindow("name"), window);
  EXPECT_EQ(recorder.order(), Names{});
}

TEST_F(VideoWindowRegistryTest, AnswersByName) {
  VideoWindow* window = registry.registerVideoWindow("name", {3, 2}, 0);
  window->playerId = 7;
  EXPECT_EQ(registry.frameWidthOf("name"), 3U);
  EXPECT_EQ(registry.frameHeightOf("name"), 2U);
  EXPECT_EQ(registry.frameBufferOf("name"), window->frameBuffer.get());
  EXPECT_EQ(registry.playerIdOf("name"), 7);
}

TEST_F(VideoWindowRegistryTest, ForgetsARecord) {
  registry.registerVideoWindow("one", kFrameSize, 0);
  registry.registerVideoWindow("two", kFrameSize, 0);
  registry.unregisterVideoWindow("one");
  EXPECT_EQ(registry.findVideoWindow("one"), nullptr);
  EXPECT_NE(registry.findVideoWindow("two"), nullptr);
}

TEST_F(VideoWindowRegistryTest, ForgettingAnUnknownNameDoesNothing) {
  registry.registerVideoWindow("one", kFrameSize, 0);
  registry.unregisterVideoWindow("two");
  EXPECT_NE(registry.findVideoWindow("one"), nullptr);
}

TEST_F(VideoWindowRegistryTest, ForgettingARecordLeavesItsPlayer) {
  const std::uint32_t player = openRecord("name")->playerId;
  registry.unregisterVideoWindow("name");
  EXPECT_TRUE(threadedServer().hasOpenPlayer(player));
}

TEST_F(VideoWindowRegistryTest, AFrameTooLargeIsOutOfMemoryAndLeavesNoRecord) {
  EXPECT_THROW(registry.registerVideoWindow("name", {0x8000, 0x8000}, 0), std::bad_alloc);
  EXPECT_EQ(registry.findVideoWindow("name"), nullptr);
}

TEST_F(VideoWindowRegistryTest, FindingAllocatesNothing) {
  const std::string name(100, 'n');
  registry.registerVideoWindow(name, kFrameSize, 0);
  const std::size_t before = allocationCount();
  registry.findVideoWindow(name);
  registry.findVideoWindow("some\nother name that is too long for a small string");
  EXPECT_EQ(allocationCount(), before);
}

// ---- Names ----

TEST_F(VideoWindowRegistryTest, StoresANameWithBlanksForLineFeeds) {
  EXPECT_EQ(registry.registerVideoWindow("a\nb\n\nc", kFrameSize, 0)->name, "a b  c");
}

TEST_F(VideoWindowRegistryTest, ALineFeedAndABlankNameTheSameWindow) {
  const VideoWindow* window = registry.registerVideoWindow("a\nb", kFrameSize, 0);
  EXPECT_EQ(registry.findVideoWindow("a b"), window);
  EXPECT_EQ(registry.findVideoWindow("a\nb"), window);
  registry.unregisterVideoWindow("a\nb");
  EXPECT_EQ(registry.findVideoWindow("a b"), nullptr);
}

TEST_F(VideoWindowRegistryTest, AccessorsTakeNamesWithLineFeeds) {
  const VideoWindow* window = registry.registerVideoWindow("a b", {3, 2}, 0);
  EXPECT_EQ(registry.frameWidthOf("a\nb"), 3U);
  EXPECT_EQ(registry.frameHeightOf("a\nb"), 2U);
  EXPECT_EQ(registry.frameBufferOf("a\nb"), window->frameBuffer.get());
  EXPECT_EQ(registry.playerIdOf("a\nb"), -1);
}

TEST_F(VideoWindowRegistryTest, ComparesNamesWholeAndCaseSensitively) {
  registry.registerVideoWindow("Name", kFrameSize, 0);
  for (const char* other : {"name", "NAME", "Nam", "Name ", "", "Name\n", "Name\t"}) {
    EXPECT_EQ(registry.findVideoWindow(other), nullptr) << other;
  }
}

TEST_F(VideoWindowRegistryTest, TheEmptyNameIsAName) {
  const VideoWindow* window = registry.registerVideoWindow("", kFrameSize, 0);
  EXPECT_EQ(registry.findVideoWindow(""), window);
}

TEST_F(VideoWindowRegistryTest, OfTwoRecordsWithOneNameTheLowerAddressIsFoundFirst) {
  for (int pair = 0; pair < 20; ++pair) {
    VideoWindow* one = registry.registerVideoWindow("one", kFrameSize, 0);
    VideoWindow* two = registry.registerVideoWindow("two", kFrameSize, 0);
    registry.renameVideoWindowCore("two", "one", "");
    VideoWindow* lower = std::min(one, two, std::less<>());
    VideoWindow* upper = std::max(one, two, std::less<>());
    EXPECT_EQ(registry.findVideoWindow("one"), lower);
    lower->playerId = 7;
    EXPECT_EQ(registry.playerIdOf("one"), 7);
    registry.unregisterVideoWindow("one");
    EXPECT_EQ(registry.findVideoWindow("one"), upper);
    upper->name = "spent " + std::to_string(pair);  // kept, so that addresses vary
  }
}

// ---- Opening ----

TEST_F(VideoWindowRegistryTest, OpensAPlayerTitledByTheRecordsName) {
  VideoWindow* window = openRecord("a\nb");
  EXPECT_EQ(window->playerId, 0);
  EXPECT_EQ(window->server, &threadedServer());
  EXPECT_TRUE(hasWindow(threadedServer(), 0));
  const SdlCall call = recorder.last("SDL_CreateWindow");
  EXPECT_EQ(call.texts, Names{"a b"});
  EXPECT_EQ(Numbers(call.arguments.begin() + 1, call.arguments.end()),
            (Numbers{60, 80, 320, 240, SDL_WINDOW_RESIZABLE}));
}

TEST_F(VideoWindowRegistryTest, OpensInTheServerThatTheFlagSelects) {
  const VideoWindow* window = openRecord("name", /*synchronous=*/true);
  EXPECT_EQ(window->server, &synchronousServer());
  EXPECT_TRUE(synchronousServer().hasOpenPlayer(0));
  EXPECT_EQ(existingServer(false), nullptr);
}

TEST_F(VideoWindowRegistryTest, RaisesAPlayerThatIsOpen) {
  VideoWindow* window = openRecord("name");
  registry.openVideoWindow(*window, request(kFrameSize, {320, 240}));
  EXPECT_EQ(window->playerId, 0);
  EXPECT_TRUE(isCalled("SDL_RaiseWindow"));
  EXPECT_EQ(recorder.count("SDL_RaiseWindow"), 1U);
  EXPECT_EQ(recorder.count("SDL_CreateWindow"), 1U);
}

TEST_F(VideoWindowRegistryTest, OpensAFreshPlayerForAClosedOne) {
  VideoWindow* window = openRecord("name");
  threadedServer().closePlayer(0);
  registry.openVideoWindow(*window, request(kFrameSize, {320, 240}));
  EXPECT_EQ(window->playerId, 1);
  EXPECT_TRUE(hasWindow(threadedServer(), 1));
  EXPECT_EQ(recorder.count("SDL_RaiseWindow"), 0U);
}

TEST_F(VideoWindowRegistryTest, AWindowSizeOfTheMarkerTwiceOpensAtTheFramesSize) {
  VideoWindow* window = registry.registerVideoWindow("name", {31, 17}, 1);
  registry.openVideoWindow(*window, request({31, 17}, {0x7FFFFFFF, 0x7FFFFFFF}));
  const Numbers created = recorder.last("SDL_CreateWindow").arguments;
  EXPECT_EQ(created[3], 31);
  EXPECT_EQ(created[4], 17);
  EXPECT_EQ(posSizeOf(*window).size[0], 31);
  EXPECT_EQ(posSizeOf(*window).size[1], 17);
}

TEST_F(VideoWindowRegistryTest, OneMarkerAloneIsASize) {
  VideoWindow* window = registry.registerVideoWindow("name", {31, 17}, 1);
  const CaptureStderr tooLarge;
  registry.openVideoWindow(*window, request({31, 17}, {0x7FFFFFFF, 17}));
  EXPECT_EQ(recorder.last("SDL_CreateWindow").arguments[3], 20000);
}

TEST_F(VideoWindowRegistryTest, OpensFullScreen) {
  VideoWindow* window = registry.registerVideoWindow("name", kFrameSize, 1);
  registry.openVideoWindow(*window, request(kFrameSize, {320, 240}, true));
  EXPECT_TRUE(synchronousServer().isPlayerFullscreen(0));
}

// ---- Openness, place and size ----

TEST_F(VideoWindowRegistryTest, LookingUpARecordsPlayerMakesNoServer) {
  const VideoWindow* window = registry.registerVideoWindow("name", kFrameSize, 0);
  EXPECT_FALSE(registry.isVideoWindowOpen(*window));
  EXPECT_TRUE(isNotOpen(*window));
  registry.renameVideoWindowCore("name", "other", "title");
  registry.closeVideoWindow("other");
  EXPECT_EQ(existingServer(false), nullptr);
  EXPECT_EQ(existingServer(true), nullptr);
  EXPECT_EQ(recorder.order(), Names{});
}

TEST_F(VideoWindowRegistryTest, ReportsPlaceAndSizeOfAnOpenWindow) {
  for (const bool synchronous : {false, true}) {
    const PosSize result = posSizeOf(*openRecord("name", synchronous));
    EXPECT_EQ(result.position[0], 60);
    EXPECT_EQ(result.position[1], 80);
    EXPECT_EQ(result.size[0], 320);
    EXPECT_EQ(result.size[1], 240);
    registry.unregisterVideoWindow("name");
  }
}

TEST_F(VideoWindowRegistryTest, ReportsMinus2FourTimesForAnUnknownPlayer) {
  VideoWindow* window = registry.registerVideoWindow("name", kFrameSize, 0);
  threadedServer();
  EXPECT_TRUE(isNotOpen(*window)) << "never opened";
  window->playerId = 99;
  EXPECT_TRUE(isNotOpen(*window)) << "an id that the server does not know";
  EXPECT_FALSE(registry.isVideoWindowOpen(*window));
}

TEST_F(VideoWindowRegistryTest, ReportsMinus2FourTimesForAClosingPlayer) {
  const VideoWindow* window = openRecord("name");
  ASSERT_TRUE(hasWindow(threadedServer(), 0));
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.halted());
  threadedServer().closePlayer(0);
  EXPECT_TRUE(isNotOpen(*window));
  EXPECT_FALSE(registry.isVideoWindowOpen(*window));
}

TEST_F(VideoWindowRegistryTest, ReportsMinus2FourTimesForAClosedPlayer) {
  const VideoWindow* window = openRecord("name");
  threadedServer().closePlayer(0);
  ASSERT_TRUE(awaitClosed(0));
  EXPECT_TRUE(isNotOpen(*window));
  EXPECT_FALSE(registry.isVideoWindowOpen(*window));
  EXPECT_EQ(window->playerId, 0) << "the record keeps the last id";
}

TEST_F(VideoWindowRegistryTest, LooksAPlayerUpInTheServerThatTheFlagSelects) {
  openRecord("threaded");
  const VideoWindow* window = registry.registerVideoWindow("synchronous", kFrameSize, 1);
  registry.findVideoWindow("synchronous")->playerId = 0;
  EXPECT_FALSE(registry.isVideoWindowOpen(*window));
  EXPECT_TRUE(isNotOpen(*window));
}

// ---- Closing ----

TEST_F(VideoWindowRegistryTest, ClosesThePlayerAndForgetsTheRecord) {
  const std::uint32_t player = openRecord("a b")->playerId;
  registry.closeVideoWindow("a\nb");
  EXPECT_FALSE(threadedServer().hasOpenPlayer(player));
  EXPECT_EQ(registry.findVideoWindow("a b"), nullptr);
  EXPECT_TRUE(awaitClosed(player));
}

TEST_F(VideoWindowRegistryTest, ClosingARecordWithoutAPlayerForgetsIt) {
  registry.registerVideoWindow("name", kFrameSize, 0);
  registry.closeVideoWindow("name");
  EXPECT_EQ(registry.findVideoWindow("name"), nullptr);
}

TEST_F(VideoWindowRegistryTest, ClosingAnUnknownNameDoesNothing) {
  const VideoWindow* window = openRecord("name");
  registry.closeVideoWindow("other");
  EXPECT_TRUE(registry.isVideoWindowOpen(*window));
}

// The library's own decision: closing by name always addresses the threaded server. Both players
// have the id 0, each in its own server.
TEST_F(VideoWindowRegistryTest, ClosingASynchronousWindowAddressesTheThreadedServer) {
  const VideoWindow* threaded = openRecord("threaded");
  openRecord("synchronous", /*synchronous=*/true);
  registry.closeVideoWindow("synchronous");
  EXPECT_EQ(registry.findVideoWindow("synchronous"), nullptr);
  EXPECT_TRUE(synchronousServer().hasOpenPlayer(0)) << "the synchronous window stays on screen";
  EXPECT_FALSE(registry.isVideoWindowOpen(*threaded)) << "the window of that id closes instead";
}

TEST_F(VideoWindowRegistryTest, ClosingASynchronousWindowAloneLeavesItOnScreen) {
  openRecord("synchronous", /*synchronous=*/true);
  registry.closeVideoWindow("synchronous");
  EXPECT_TRUE(synchronousServer().hasOpenPlayer(0));
  EXPECT_EQ(existingServer(false), nullptr);
}

// ---- Renaming ----

TEST_F(VideoWindowRegistryTest, RenamesTheRecordAndTitlesTheWindow) {
  const VideoWindow* window = openRecord("old");
  registry.renameVideoWindowCore("old", "new", "title");
  EXPECT_EQ(registry.findVideoWindow("old"), nullptr);
  EXPECT_EQ(registry.findVideoWindow("new"), window);
  ASSERT_TRUE(isCalled("SDL_SetWindowTitle"));
  EXPECT_EQ(recorder.last("SDL_SetWindowTitle").texts, Names{"title"});
}

TEST_F(VideoWindowRegistryTest, RenamesWithBlanksForLineFeeds) {
  const VideoWindow* window = openRecord("o l d");
  registry.renameVideoWindowCore("o\nl\nd", "n\ne\nw", "ti\ntle");
  EXPECT_EQ(window->name, "n e w");
  ASSERT_TRUE(isCalled("SDL_SetWindowTitle"));
  EXPECT_EQ(recorder.last("SDL_SetWindowTitle").texts, Names{"ti tle"});
}

TEST_F(VideoWindowRegistryTest, WithoutMemoryNeitherRecordNorWindowIsRenamed) {
  const std::string oldName(100, 'o');
  const std::string newName(100, 'n');
  const std::string title(100, 't');
  openRecord(oldName);
  ASSERT_TRUE(hasWindow(threadedServer(), 0));
  std::size_t left = 0;
  for (; registry.findVideoWindow(newName) == nullptr; ++left) {
    ASSERT_EQ(recorder.count("SDL_SetWindowTitle"), 0U) << left << " allocations";
    try {
      const OutOfMemory afterThese(left);
      registry.renameVideoWindowCore(oldName, newName, title);
    } catch (const std::bad_alloc&) {
    }
  }
  EXPECT_GT(left, 2U);
  ASSERT_TRUE(isCalled("SDL_SetWindowTitle"));
  EXPECT_EQ(recorder.last("SDL_SetWindowTitle").texts, Names{title});
}

TEST_F(VideoWindowRegistryTest, RenamesARecordWithoutAPlayer) {
  const VideoWindow* window = registry.registerVideoWindow("old", kFrameSize, 0);
  registry.renameVideoWindowCore("old", "new", "title");
  EXPECT_EQ(window->name, "new");
}

TEST_F(VideoWindowRegistryTest, RenamesARecordWhosePlayerIsClosing) {
  const VideoWindow* window = openRecord("old");
  ASSERT_TRUE(hasWindow(threadedServer(), 0));
  threadedServer().closePlayer(0);
  registry.renameVideoWindowCore("old", "new", "title");
  EXPECT_EQ(window->name, "new");
  EXPECT_EQ(recorder.count("SDL_SetWindowTitle"), 0U);
}

TEST_F(VideoWindowRegistryTest, RenamingAnUnknownNameDoesNothing) {
  const VideoWindow* window = openRecord("name");
  registry.renameVideoWindowCore("other", "new", "title");
  EXPECT_EQ(window->name, "name");
  EXPECT_EQ(recorder.count("SDL_SetWindowTitle"), 0U);
}

TEST_F(VideoWindowRegistryTest, RenamingASynchronousRecordTitlesTheThreadedWindowOfItsId) {
  openRecord("threaded");
  ASSERT_TRUE(hasWindow(threadedServer(), 0));
  const std::int64_t threadedWindow = recorder.last("SDL_CreateWindow").result;
  const VideoWindow* window = openRecord("synchronous", /*synchronous=*/true);
  registry.renameVideoWindowCore("synchronous", "new", "title");
  EXPECT_EQ(window->name, "new");
  ASSERT_TRUE(isCalled("SDL_SetWindowTitle"));
  ASSERT_EQ(recorder.count("SDL_SetWindowTitle"), 1U);
  EXPECT_EQ(recorder.last("SDL_SetWindowTitle").arguments[0], threadedWindow);
}

// ---- The end ----

TEST_F(VideoWindowRegistryTest, ItsEndLeavesPlayersOpen) {
  {
    VideoWindowRegistry other;
    VideoWindow* window = other.registerVideoWindow("name", kFrameSize, 1);
    other.openVideoWindow(*window, request(kFrameSize, {320, 240}));
  }
  EXPECT_TRUE(synchronousServer().hasOpenPlayer(0));
}

TEST_F(VideoWindowRegistryTest, TheProcessHasOne) {
  EXPECT_EQ(&videoWindowRegistry(), &videoWindowRegistry());
}

}  // namespace
}  // namespace framesink::test
