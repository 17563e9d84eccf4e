#include "process/sdl_session.hpp"

#include <SDL.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/capture_stderr.hpp"
#include "support/dummy_video.hpp"
#include "support/scoped_variable.hpp"
#include "support/sdl_recorder.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

using Names = std::vector<std::string>;

std::string hint(const char* name) {
  const char* value = SDL_GetHint(name);
  return value == nullptr ? "" : value;
}

class SdlSessionTest : public DummyVideoTest {
 protected:
  ~SdlSessionTest() override { quitSdl(); }
};

TEST_F(SdlSessionTest, InitialisesVideoAloneAndOnce) {
  initVideo();
  initVideo();
  ASSERT_EQ(recorder.count("SDL_Init"), 1U);
  EXPECT_EQ(recorder.last("SDL_Init").arguments[0], 0x20);
}

TEST_F(SdlSessionTest, LeavesTheScreenSaverEnabledOnce) {
  initVideo();
  initVideo();
  EXPECT_EQ(recorder.count("SDL_EnableScreenSaver"), 1U);
  EXPECT_EQ(SDL_IsScreenSaverEnabled(), SDL_TRUE);
}

TEST_F(SdlSessionTest, TellsThatVideoDidNotComeUpAndCarriesOn) {
  recorder.refuse("SDL_Init");
  const CaptureStderr said;
  initVideo();
  EXPECT_EQ(said.text(), "Could not initialize SDL: refused by the test\n");
  EXPECT_EQ(recorder.count("SDL_EnableScreenSaver"), 1U);
}

// As where there is no display and SDL does not take the offscreen driver by itself.
TEST_F(SdlSessionTest, TriesTheOffscreenDriverIfNoDriverWasAskedFor) {
  const ScopedVariable none("SDL_VIDEODRIVER", std::nullopt);
  recorder.refuse("SDL_Init", 1, 1);
  const CaptureStderr said;
  initVideo();
  EXPECT_EQ(said.text(), "");
  EXPECT_EQ(recorder.count("SDL_Init"), 2U);
  EXPECT_STREQ(SDL_GetCurrentVideoDriver(), "offscreen");
}

TEST_F(SdlSessionTest, TellsTheFirstReasonIfTheOffscreenDriverFailsToo) {
  const ScopedVariable none("SDL_VIDEODRIVER", std::nullopt);
  int tries = 0;
  const SdlHook failing = recorder.alter("SDL_Init", [&](std::int64_t) {
    SDL_SetError("reason %d", ++tries);
    return -1;
  });
  const CaptureStderr said;
  initVideo();
  EXPECT_THAT(said.text(), testing::EndsWith("Could not initialize SDL: reason 1\n"));
  EXPECT_EQ(tries, 2);
}

TEST_F(SdlSessionTest, TakesNoOtherDriverThanTheOneAskedFor) {
  const ScopedVariable none("SDL_VIDEODRIVER", std::nullopt);
  const ScopedVariable asked("SDL_VIDEO_DRIVER", "x11");
  recorder.refuse("SDL_Init");
  const CaptureStderr said;
  initVideo();
  EXPECT_EQ(recorder.count("SDL_Init"), 1U);
}

TEST_F(SdlSessionTest, LeavesVideoAloneThatIsUpAlready) {
  ASSERT_EQ(SDL_VideoInit(nullptr), 0);
  SDL_VideoQuit();
  initVideo();
  recorder.forget();
  initVideo();
  EXPECT_EQ(recorder.count("SDL_WasInit"), 1U);
  EXPECT_EQ(recorder.order().size(), 1 + recorder.count("SDL_SetHintWithPriority"));
}

TEST_F(SdlSessionTest, SetsItsHintsBeforeInitialisation) {
  initVideo();
  const Names order = recorder.order();
  EXPECT_EQ(order, (Names{"SDL_WasInit", "SDL_SetHintWithPriority", "SDL_SetHintWithPriority",
                          "SDL_SetHintWithPriority", "SDL_SetHintWithPriority", "SDL_Init",
                          "SDL_EnableScreenSaver"}));
  EXPECT_EQ(hint(SDL_HINT_FRAMEBUFFER_ACCELERATION), "0");
  EXPECT_EQ(hint(SDL_HINT_NO_SIGNAL_HANDLERS), "1");
  EXPECT_EQ(hint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR), "0");
}

TEST_F(SdlSessionTest, TheUsersEnvironmentWinsOverTheHints) {
  const ScopedVariable acceleration("SDL_FRAMEBUFFER_ACCELERATION", "software");
  const ScopedVariable signals("SDL_NO_SIGNAL_HANDLERS", "0");
  const ScopedVariable compositor("SDL_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR", "1");
  initVideo();
  EXPECT_EQ(hint(SDL_HINT_FRAMEBUFFER_ACCELERATION), "software");
  EXPECT_EQ(hint(SDL_HINT_NO_SIGNAL_HANDLERS), "0");
  EXPECT_EQ(hint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR), "1");
}

TEST_F(SdlSessionTest, LeavesSignalsToTheHost) {
  initVideo();
  for (const int number : {SIGINT, SIGTERM}) {
    struct sigaction action {};
    ASSERT_EQ(sigaction(number, nullptr, &action), 0);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
  }
}

// ---- Generations ----

TEST_F(SdlSessionTest, QuittingEndsTheGeneration) {
  const std::uint32_t first = sdlGeneration();
  quitSdl();
  EXPECT_NE(sdlGeneration(), first);
  EXPECT_EQ(recorder.count("SDL_Quit"), 1U);
}

TEST_F(SdlSessionTest, AnInitialisationBeginsNoGeneration) {
  const std::uint32_t first = sdlGeneration();
  initVideo();
  EXPECT_EQ(sdlGeneration(), first);
}

TEST_F(SdlSessionTest, AUseKnowsWhetherItsGenerationIsOver) {
  const std::uint32_t generation = sdlGeneration();
  EXPECT_TRUE(SdlUse(generation));
  quitSdl();
  EXPECT_FALSE(SdlUse(generation));
  EXPECT_TRUE(SdlUse(sdlGeneration()));
}

TEST_F(SdlSessionTest, QuittingWaitsForUsesUnderWay) {
  const std::uint32_t generation = sdlGeneration();
  auto use = std::make_unique<SdlUse>(generation);
  std::atomic<bool> hasQuit{false};
  std::thread quitter([&] {
    quitSdl();
    hasQuit = true;
  });
  // quitSdl() first ends the generation and then waits for the use.
  EXPECT_TRUE(waitUntil([&] { return sdlGeneration() != generation; }));
  EXPECT_FALSE(waitUntil([&] { return hasQuit || recorder.count("SDL_Quit") > 0; },
                         std::chrono::milliseconds(30)));
  use.reset();
  quitter.join();
  EXPECT_EQ(recorder.count("SDL_Quit"), 1U);
}

// ---- The host shuts SDL down ----

TEST_F(SdlSessionTest, NoticesOnceThatTheHostHasShutSdlDown) {
  initVideo();
  const std::uint32_t quits = foreignQuits();
  SDL_Quit();
  for (int i = 0; i < 2; ++i) noticeForeignQuit();
  EXPECT_EQ(foreignQuits(), quits + 1);
}

TEST_F(SdlSessionTest, JoinsTheVideoThatTheHostHasStartedAgain) {
  initVideo();
  const std::uint32_t quits = foreignQuits();
  for (std::uint32_t i = 1; i <= 2; ++i) {
    SDL_Quit();
    ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0);
    noticeForeignQuit();
    joinVideo(nullptr);
    noticeForeignQuit();
    EXPECT_EQ(foreignQuits(), quits + i);
  }
}

TEST_F(SdlSessionTest, TakesHintsThatCannotBeSetForNoShutDown) {
  recorder.refuse("SDL_SetHintWithPriority");
  initVideo();
  const std::uint32_t quits = foreignQuits();
  noticeForeignQuit();
  EXPECT_EQ(foreignQuits(), quits);
}

// ---- The gate ----

TEST(SdlGate, KnowsItsHolder) {
  EXPECT_FALSE(sdlGate.isHeldByThisThread());
  const std::lock_guard gate(sdlGate);
  EXPECT_TRUE(sdlGate.isHeldByThisThread());
  bool heldByOther = true;
  std::thread([&] { heldByOther = sdlGate.isHeldByThisThread(); }).join();
  EXPECT_FALSE(heldByOther);
}

TEST(SdlGate, IsHeldUntilTheOutermostHolderLeaves) {
  {
    const std::lock_guard outer(sdlGate);
    { const std::lock_guard inner(sdlGate); }
    EXPECT_TRUE(sdlGate.isHeldByThisThread());
  }
  EXPECT_FALSE(sdlGate.isHeldByThisThread());
}

TEST(SdlGate, LetsOneThreadInAtATime) {
  int inside = 0;
  int together = 0;
  const auto visit = [&] {
    for (int i = 0; i < 10000; ++i) {
      const std::lock_guard gate(sdlGate);
      together += inside++;
      --inside;
    }
  };
  std::thread other(visit);
  visit();
  other.join();
  EXPECT_EQ(together, 0);
}

}  // namespace
}  // namespace framesink::test
