// The loss of the display is for good, so each test that loses it does so in a child process, which
// runs the same test up to that point.
#include "process/display_loss.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "process/sdl_session.hpp"
#include "support/capture_stderr.hpp"
#include "support/dummy_video.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

constexpr int kDone = 7;
constexpr const char* kGone = "The display is gone; the model runs on.\n";
constexpr const char* kNoWindow = "No window can be opened: the display is gone.\n";
constexpr const char* kMark = "FRAMESINK_DISPLAY_LOST";

// In a child process: ends it unless `holds`, with a reason that GoogleTest shows.
void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "Not true: %s\n", what);
  std::_Exit(1);
}

// ---- Without a loss ----

TEST(CallSdl, RunsItsCallsAndReturnsTrue) {
  const InGate gate;
  bool isCalled = false;
  EXPECT_TRUE(callSdl([&] { isCalled = true; }));
  EXPECT_TRUE(isCalled);
}

TEST(CallSdl, IsKnownToItsThreadOnlyAndWhileItLasts) {
  const InGate gate;
  EXPECT_FALSE(isCallingSdl());
  bool isOther = true;
  callSdl([&] {
    EXPECT_TRUE(isCallingSdl());
    std::thread([&] { isOther = isCallingSdl(); }).join();
    callSdl([] { EXPECT_TRUE(isCallingSdl()); });
    EXPECT_TRUE(isCallingSdl());
  });
  EXPECT_FALSE(isOther);
  EXPECT_FALSE(isCallingSdl());
}

TEST(CallSdl, CountsItsTimeFromTheOutermostCallOn) {
  const auto hasTaken = [](std::chrono::milliseconds time) {
    return waitUntil([=] { return timeInSdl() >= time; });
  };
  const InGate gate;
  EXPECT_EQ(timeInSdl().count(), 0);
  callSdl([&] {
    EXPECT_TRUE(hasTaken(std::chrono::milliseconds(5)));
    callSdl([] { EXPECT_GE(timeInSdl().count(), 5); });
    EXPECT_GE(timeInSdl().count(), 5);
    std::thread([] { EXPECT_GE(timeInSdl().count(), 5); }).join();
  });
  EXPECT_EQ(timeInSdl().count(), 0);
}

TEST(CallSdl, LetsOtherExceptionsPass) {
  const InGate gate;
  EXPECT_THROW(callSdl([] { throw 1; }), int);
  EXPECT_FALSE(isCallingSdl());
  EXPECT_EQ(timeInSdl().count(), 0);
}

// ---- The loss ----

class DisplayLossDeathTest : public DummyVideoTest {
 protected:
  DisplayLossDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

  // Runs `action` in a child process and returns what it printed on standard error. `action` ends
  // the child if it finds something wrong.
  template <class Action>
  static void requireOutput(Action action, const std::string& output) {
    std::string said;
    {
      const CaptureStderr capture;
      action();
      said = capture.text();
    }
    if (said != output) std::fputs(said.c_str(), stderr);
    require(said == output, "the expected lines on standard error");
    std::_Exit(kDone);
  }
};

void loseInACall() {
  const InGate gate;
  const bool isWhole = callSdl([] {
    loseDisplay();
    require(false, "a loss ends the calls");
  });
  require(!isWhole, "callSdl returns false after a loss");
}

#define EXPECT_IN_A_CHILD(action, output) \
  EXPECT_EXIT(requireOutput(action, output), testing::ExitedWithCode(kDone), "")

TEST_F(DisplayLossDeathTest, CutsTheCallsShortAndIsToldOnce) {
  EXPECT_IN_A_CHILD(
      [] {
        const std::uint32_t generation = sdlGeneration();
        require(!isDisplayLost(), "the display is there at first");
        loseInACall();
        declareDisplayLost();
        require(isDisplayLost(), "the display is lost");
        require(sdlGeneration() != generation, "the loss ends the generation");
        require(!isCallingSdl() && timeInSdl().count() == 0, "no calls are under way");
        bool isGateFree = false;
        std::thread([&] {
          const InGate gate;
          isGateFree = true;
        }).join();
        require(isGateFree, "the gate is free");
      },
      kGone);
}

TEST_F(DisplayLossDeathTest, InANestedCallEndsTheOutermost) {
  EXPECT_IN_A_CHILD(
      [] {
        const InGate gate;
        const bool isWhole = callSdl([] {
          callSdl([] { callSdl([] { loseDisplay(); }); });
          require(false, "the loss ends the outer calls, too");
        });
        require(!isWhole, "the outermost callSdl returns false");
        require(!isCallingSdl() && timeInSdl().count() == 0, "no calls are under way");
      },
      kGone);
}

TEST_F(DisplayLossDeathTest, LetsNoMoreCallsBegin) {
  EXPECT_IN_A_CHILD(
      [] {
        declareDisplayLost();
        const InGate gate;
        require(!callSdl([] { require(false, "no call begins"); }), "callSdl returns false");
      },
      kGone);
}

TEST_F(DisplayLossDeathTest, LetsTheRestOfCallsUnderWayEnd) {
  EXPECT_IN_A_CHILD(
      [] {
        const InGate gate;
        bool isEnded = false;
        require(callSdl([&] {
                  declareDisplayLost();
                  isEnded = true;
                }),
                "callSdl returns true for calls that ended");
        require(isEnded, "the calls end");
      },
      kGone);
}

TEST_F(DisplayLossDeathTest, TellsOnceThatNoWindowCanBeOpened) {
  EXPECT_IN_A_CHILD(
      [] {
        for (int i = 0; i < 2; ++i) reportNoWindow();
      },
      kNoWindow);
}

TEST_F(DisplayLossDeathTest, IsNotToldOnceTheLibraryIsLeaving) {
  EXPECT_IN_A_CHILD(
      [] {
        expectDisplayLoss();
        declareDisplayLost();
        require(isDisplayLost(), "the display is lost");
      },
      "");
}

// ---- A later load of the library ----

TEST_F(DisplayLossDeathTest, LeavesAMarkInSdl) {
  EXPECT_IN_A_CHILD(
      [] {
        require(SDL_GetHint(kMark) == nullptr, "there is no mark before the loss");
        const InGate gate;
        callSdl([] { loseDisplay(); });
        require(SDL_GetHint(kMark) != nullptr, "there is a mark after the loss");
      },
      kGone);
}

TEST_F(DisplayLossDeathTest, IsTakenOverFromAnEarlierLoadInSilence) {
  EXPECT_IN_A_CHILD(
      [this] {
        const std::uint32_t generation = sdlGeneration();
        SDL_SetHint(kMark, "1");
        require(!inheritDisplayLoss(), "another value is no mark");
        SDL_SetHint(kMark, "for good");
        recorder.forget();
        {
          const InGate gate;
          initVideo();
        }
        require(isDisplayLost(), "the display is lost");
        require(sdlGeneration() != generation, "the loss ends the generation");
        require(recorder.calls().empty(), "SDL is not called");
        declareDisplayLost();
      },
      "");
}

// ---- SDL after the loss ----

TEST_F(DisplayLossDeathTest, IsFollowedByNoRestAndNoEndInSdl) {
  EXPECT_IN_A_CHILD(
      [this] {
        declareDisplayLost();
        recorder.forget();
        restInSdl(1);
        quitSdl();
        require(recorder.calls().empty(), "SDL is not called");
      },
      kGone);
}

}  // namespace
}  // namespace framesink::test
