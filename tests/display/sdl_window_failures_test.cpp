// Windows of which SDL fails to make some part.
#include <SDL.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "display/sdl_window.hpp"
#include "display_helpers.hpp"
#include "process/sdl_session.hpp"
#include "support/capture_stderr.hpp"
#include "support/foreign_leaks.hpp"
#include "support/frames.hpp"
#include "support/sdl_recorder.hpp"

namespace framesink::test {
namespace {

using Numbers = std::vector<std::int64_t>;
using Names = std::vector<std::string>;

// Captures what SDL logs, which SDL then does not write.
class CaptureLog {
 public:
  CaptureLog() {
    SDL_LogGetOutputFunction(&previous_, &previousData_);
    SDL_LogSetOutputFunction(write, this);
  }
  ~CaptureLog() { SDL_LogSetOutputFunction(previous_, previousData_); }
  CaptureLog(const CaptureLog&) = delete;
  CaptureLog& operator=(const CaptureLog&) = delete;

  std::string text;
  int category = -1;
  SDL_LogPriority priority = SDL_NUM_LOG_PRIORITIES;

 private:
  static void write(void* self, int category, SDL_LogPriority priority, const char* message) {
    auto* log = static_cast<CaptureLog*>(self);
    log->text += message;
    log->category = category;
    log->priority = priority;
  }

  SDL_LogOutputFunction previous_ = nullptr;
  void* previousData_ = nullptr;
};

class SdlWindowFailureTest : public DummyVideoTest {
 protected:
  SdlWindowFailureTest() { initVideo(); }
  ~SdlWindowFailureTest() override {
    window.reset();
    quitSdl();
  }

  void open() { window = std::make_unique<SdlWindow>(requestFor()); }

  std::string saidWhileOpening() {
    const CaptureStderr said;
    open();
    return said.text();
  }
  void showFrame() { window->showFrame(plainFrame(kFrameSize, 0).data()); }

  std::unique_ptr<SdlWindow> window;
};

TEST_F(SdlWindowFailureTest, TellsThatSdlMadeNoWindow) {
  recorder.refuse("SDL_CreateWindow");
  EXPECT_EQ(saidWhileOpening(), "Could not create window: refused by the test\n");
}

// Some versions of SDL make such a window; the others' wording is their own.
TEST_F(SdlWindowFailureTest, TellsWhySdlMakesNoWindowOf20000Pixels) {
  const CaptureStderr said;
  const SdlWindow tooWide(requestFor({.windowSize = Size{30000, 10}}));
  const auto& made = recorder.last("SDL_CreateWindow");
  EXPECT_EQ(made.result == 0, !made.error.empty());
  EXPECT_EQ(said.text(), made.result != 0 ? "" : "Could not create window: " + made.error + "\n");
}

TEST_F(SdlWindowFailureTest, WithoutAWindowThereIsNothingElse) {
  recorder.refuse("SDL_CreateWindow");
  saidWhileOpening();
  EXPECT_EQ(recorder.count("SDL_CreateRGBSurfaceFrom"), 0U);
  EXPECT_EQ(recorder.count("SDL_CreateRenderer"), 0U);
  EXPECT_EQ(recorder.count("SDL_CreateTexture"), 0U);
  EXPECT_EQ(recorder.count("SDL_RenderSetLogicalSize"), 0U);
  EXPECT_EQ(window->windowId(), 0U);
  EXPECT_FALSE(window->isFullscreen());
  EXPECT_EQ(window->geometry().size, kFrameSize);
  EXPECT_EQ(window->geometry().position, kPlace);
}

TEST_F(SdlWindowFailureTest, WithoutAWindowNothingIsDrawnOrReleased) {
  recorder.refuse("SDL_CreateWindow");
  saidWhileOpening();
  recorder.forget();
  showFrame();
  EXPECT_EQ(recorder.order(), Names{});
  window.reset();
  EXPECT_EQ(recorder.order(), Names{"SDL_DestroyWindow"});
  EXPECT_EQ(recorder.last("SDL_DestroyWindow").arguments, Numbers{0});
}

TEST_F(SdlWindowFailureTest, AWindowWithoutPixelFormatIsNeverDrawnButReleased) {
  recorder.refuse("SDL_GetWindowPixelFormat");
  EXPECT_EQ(saidWhileOpening(), "");
  EXPECT_EQ(recorder.count("SDL_CreateRenderer"), 0U);
  EXPECT_NE(window->windowId(), 0U);
  const std::int64_t handle = recorder.last("SDL_CreateWindow").result;
  recorder.forget();
  showFrame();
  window.reset();
  EXPECT_EQ(recorder.order(), Names{"SDL_DestroyWindow"});
  EXPECT_EQ(recorder.last("SDL_DestroyWindow").arguments, Numbers{handle});
}

TEST_F(SdlWindowFailureTest, TriesAnAcceleratedRendererNext) {
  recorder.refuse("SDL_CreateRenderer", 1, 1);
  saidWhileOpening();
  const auto tried = recorder.calls("SDL_CreateRenderer");
  ASSERT_EQ(tried.size(), 2U);
  EXPECT_EQ(tried[0].arguments[2], SDL_RENDERER_SOFTWARE);
  EXPECT_EQ(tried[1].arguments, (Numbers{tried[0].arguments[0], -1, SDL_RENDERER_ACCELERATED}));
}

TEST_F(SdlWindowFailureTest, TellsThatNoRendererCouldBeMade) {
  recorder.refuse("SDL_CreateRenderer");
  const SdlHook later =
      recorder.before("SDL_DestroyWindow", [](const SdlCall&) { SDL_SetError("another reason"); });
  EXPECT_EQ(saidWhileOpening(),
            "Could not create renderer: refused by the test\n"
            "Unable to create texture: Parameter 'renderer' is invalid\n"
            "Internal error: unable to set logical size: Parameter 'renderer' is invalid\n");
  EXPECT_EQ(recorder.count("SDL_CreateRenderer"), 2U);
}

TEST_F(SdlWindowFailureTest, WithoutARendererTheWindowIsReleasedOnce) {
  recorder.refuse("SDL_CreateRenderer");
  saidWhileOpening();
  const std::int64_t handle = recorder.last("SDL_CreateWindow").result;
  EXPECT_EQ(recorder.last("SDL_DestroyWindow").arguments, Numbers{handle});
  EXPECT_EQ(window->windowId(), 0U);
  recorder.forget();
  showFrame();
  window->raise();
  window->setTitle("title");
  window->enterFullscreen();
  EXPECT_FALSE(window->isFullscreen());
  window->leaveFullscreen();
  window.reset();
  for (const SdlCall& call : recorder.calls()) {
    EXPECT_EQ(call.arguments[0], 0) << call.function << " of a window that is gone";
  }
}

TEST_F(SdlWindowFailureTest, TellsThatNoTextureCouldBeMade) {
  recorder.refuse("SDL_CreateTexture");
  EXPECT_EQ(saidWhileOpening(), "Unable to create texture: refused by the test\n");
}

TEST_F(SdlWindowFailureTest, WithoutATextureNothingIsDrawn) {
  recorder.refuse("SDL_CreateTexture");
  saidWhileOpening();
  recorder.forget();
  showFrame();
  EXPECT_EQ(recorder.order(), Names{});
}

TEST_F(SdlWindowFailureTest, TellsThatTheLogicalSizeWasRefused) {
  recorder.refuse("SDL_RenderSetLogicalSize");
  EXPECT_EQ(saidWhileOpening(),
            "Internal error: unable to set logical size: refused by the test\n");
}

TEST_F(SdlWindowFailureTest, DrawsWithoutALogicalSize) {
  recorder.refuse("SDL_RenderSetLogicalSize");
  saidWhileOpening();
  showFrame();
  EXPECT_EQ(recorder.count("SDL_RenderPresent"), 1U);
}

// ---- A lost texture ----

class SdlWindowLostTextureTest : public SdlWindowFailureTest {
 protected:
  SdlWindowLostTextureTest() { expectLeaks(); }
};

TEST_F(SdlWindowLostTextureTest, IsLoggedAndShutsSdlDown) {
  open();
  recorder.refuse("SDL_LockTexture");
  const CaptureLog log;
  showFrame();
  // SDL removes one line feed from the end of each message before it calls the output function.
  EXPECT_EQ(log.text, "Could not lock texture: refused by the test");
  EXPECT_EQ(log.category, SDL_LOG_CATEGORY_APPLICATION);
  EXPECT_EQ(log.priority, SDL_LOG_PRIORITY_ERROR);
  EXPECT_EQ(recorder.count("SDL_Quit"), 1U);
  EXPECT_EQ(SDL_WasInit(SDL_INIT_VIDEO), 0U);
}

TEST_F(SdlWindowLostTextureTest, WritesNothingToStandardError) {
  open();
  recorder.refuse("SDL_LockTexture");
  const CaptureLog log;
  const CaptureStderr said;
  showFrame();
  EXPECT_EQ(said.text(), "");
}

TEST_F(SdlWindowLostTextureTest, DrawsNothing) {
  open();
  recorder.forget();
  recorder.refuse("SDL_LockTexture");
  const CaptureLog log;
  showFrame();
  EXPECT_EQ(recorder.order(),
            (Names{"SDL_LockTexture", "SDL_GetError", "SDL_LogError", "SDL_Quit"}));
}

TEST_F(SdlWindowLostTextureTest, NothingOfThatSdlIsTouchedAgain) {
  open();
  SdlWindow other(requestFor());
  recorder.refuse("SDL_LockTexture");
  const CaptureLog log;
  showFrame();
  recorder.permit("SDL_LockTexture");
  recorder.forget();
  for (SdlWindow* lost : {window.get(), &other}) {
    lost->showFrame(plainFrame(kFrameSize, 0).data());
    lost->raise();
    lost->setTitle("title");
    lost->enterFullscreen();
    EXPECT_FALSE(lost->leaveFullscreen());
    EXPECT_FALSE(lost->isFullscreen());
    EXPECT_EQ(lost->geometry().size, kFrameSize);
  }
  window.reset();
  EXPECT_EQ(recorder.order(), Names{});
}

}  // namespace
}  // namespace framesink::test
