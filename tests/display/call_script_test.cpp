// The calls that SDL gets over a window's life, in order and with every argument.
#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>

#include "events.hpp"
#include "pass_stepper.hpp"
#include "server_fixtures.hpp"

namespace framesink::test {
namespace {

// Writes calls as text: objects that SDL made by their kind, other addresses as "*".
class Script {
 public:
  explicit Script(std::vector<std::string> ignored) : ignored_(std::move(ignored)) {}

  Names of(const std::vector<SdlCall>& calls) {
    Names lines;
    for (const SdlCall& call : calls) {
      const auto kind = kKinds.find(call.function);
      if (kind != kKinds.end()) names_[call.result] = kind->second;
      if (std::count(ignored_.begin(), ignored_.end(), call.function) == 0) {
        lines.push_back(text(call));
      }
    }
    return lines;
  }

 private:
  inline static const std::map<std::string, std::string> kKinds{
      {"SDL_CreateWindow", "window"},
      {"SDL_CreateRenderer", "renderer"},
      {"SDL_CreateTexture", "texture"},
      {"SDL_CreateRGBSurfaceFrom", "icon"},
      {"SDL_CreateMutex", "mutex"}};

  std::string text(const SdlCall& call) const {
    std::string line = call.function.substr(4) + "(";
    std::size_t texts = 0;
    for (const std::int64_t argument : call.arguments) {
      const bool isAddress = argument > INT64_C(0xFFFFFFFF);
      const auto named = names_.find(argument);
      if (line.back() != '(') line += ", ";
      if (isAddress && named != names_.end()) {
        line += named->second;
      } else if (isAddress && texts < call.texts.size()) {
        line += call.texts[texts++];
      } else {
        line += isAddress ? "*" : std::to_string(argument);
      }
    }
    return line + ")";
  }

  const std::vector<std::string> ignored_;
  std::map<std::int64_t, std::string> names_;
};

const Names kIcon{"CreateRGBSurfaceFrom(*, 16, 16, 16, 32, 61440, 3840, 240, 15)",
                  "SetWindowIcon(window, icon)", "FreeSurface(icon)"};
const Names kDrawn{"LockTexture(texture, 0, *, *)", "UnlockTexture(texture)",
                   "RenderClear(renderer)", "RenderCopy(renderer, texture, 0, 0)",
                   "RenderPresent(renderer)"};
const Names kReleased{"DestroyTexture(texture)", "DestroyRenderer(renderer)",
                      "DestroyWindow(window)"};

Names parts(int logicalWidth, int logicalHeight) {
  const std::string logical =
      std::to_string(logicalWidth) + ", " + std::to_string(logicalHeight) + ")";
  return {"GetWindowPixelFormat(window)",
          "CreateRenderer(window, -1, 1)",
          "CreateTexture(renderer, 372645892, 1, 64, 48)",
          "GetWindowSize(window, *, *)",
          "RenderSetLogicalSize(renderer, " + logical,
          "GetWindowID(window)"};
}

Names operator+(Names first, const Names& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

const Names kStart{"WasInit(32)",
                   "SetHintWithPriority(SDL_FRAMEBUFFER_ACCELERATION, 0, 0)",
                   "SetHintWithPriority(SDL_NO_SIGNAL_HANDLERS, 1, 0)",
                   "SetHintWithPriority(SDL_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, 0, 0)",
                   "SetHintWithPriority(FRAMESINK_SESSION, under way, 2)",
                   "Init(32)",
                   "EnableScreenSaver()"};

using SynchronousScriptTest = SynchronousServerTest;
using ThreadedScriptTest = ThreadedServerTest;

TEST_F(SynchronousScriptTest, AWindowsLife) {
  const std::uint32_t player = addPlayer(server, {.title = "one", .windowSize = Size{640, 240}});
  deliver(server, player, noiseFrame(kFrameSize, 1));
  server.renamePlayer(player, "two");
  server.raisePlayer(player);
  server.isPlayerFullscreen(player);
  server.closePlayer(player);
  Script script({"SDL_PollEvent"});
  // Opening exposes the window, so the drain draws it again. How often depends on SDL: only the
  // beginning and the end of the script are compared.
  const Names lines = script.of(recorder.calls());
  const Names begin = kStart + Names{"WasInit(32)", "CreateWindow(one, 60, 80, 640, 240, 32)"} +
                      kIcon + parts(320, 240) + kDrawn;
  const Names end =
      Names{"SetWindowTitle(window, two)", "RaiseWindow(window)", "GetWindowFlags(window)"} +
      kReleased;
  ASSERT_GE(lines.size(), begin.size() + end.size());
  EXPECT_EQ(Names(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(begin.size())), begin);
  EXPECT_EQ(Names(lines.end() - static_cast<std::ptrdiff_t>(end.size()), lines.end()), end);
}

TEST_F(SynchronousScriptTest, AFullScreenWindowTakesThePlaceOfAnother) {
  addPlayer(server, {.title = "one", .windowSize = Size{300, 200}, .fullscreen = true});
  Script script({});
  const Names first = script.of(recorder.calls());
  const Names expected = kStart + Names{"WasInit(32)", "CreateWindow(one, 60, 80, 300, 200, 552)"} +
                         kIcon + parts(266, 200) +
                         Names{"SetWindowFullscreen(window, 4097)", "ShowWindow(window)"};
  EXPECT_EQ(first, expected);
  recorder.forget();
  addPlayer(server, {.title = "two", .fullscreen = true});
  Names second = script.of(recorder.calls());
  second.resize(5);
  EXPECT_EQ(second,
            (Names{"GetWindowFlags(window)", "SetWindowFullscreen(window, 0)",
                   "SetWindowSize(window, 300, 200)", "GetWindowFlags(window)", "Delay(2)"}));
}

TEST_F(ThreadedScriptTest, TheServersStart) {
  addPlayer(server);
  std::vector<SdlCall> calls = recorder.calls();
  std::erase_if(calls, [&](const SdlCall& call) { return call.thread != hostThread; });
  Script script({"SDL_CreateThread"});
  const Names expected = kStart + Names{"CreateMutex()", "LockMutex(mutex)", "UnlockMutex(mutex)"};
  EXPECT_EQ(script.of(calls), expected);
}

// Compares the calls of the display thread only, from its first to its last.
TEST_F(ThreadedScriptTest, AWindowsLife) {
  std::optional<PassStepper> passes(recorder);
  const std::uint32_t player = addPlayer(server, {.title = "one"});
  ASSERT_TRUE(passes->runPass());
  SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
  ASSERT_TRUE(passes->runPass());
  server.closePlayer(player);
  ASSERT_TRUE(passes->runPass());
  passes.reset();
  EXPECT_TRUE(server.stop());
  Script script({"SDL_PollEvent", "SDL_LockMutex", "SDL_UnlockMutex"});
  std::vector<SdlCall> calls = recorder.calls();
  const std::int64_t mutex = recorder.last("SDL_CreateMutex").result;
  for (const SdlCall& call : calls) {
    const bool isLock = call.function == "SDL_LockMutex" || call.function == "SDL_UnlockMutex";
    if (isLock) {
      EXPECT_EQ(call.arguments, Numbers{mutex});
    }
  }
  std::erase_if(calls, [&](const SdlCall& call) { return call.thread == hostThread; });
  Names lines = script.of(calls);
  const auto firstWindow = std::find(lines.begin(), lines.end(), "WasInit(32)");
  EXPECT_EQ(lines.front(), "WasInit(" + std::to_string(SDL_INIT_EVERYTHING) + ")");
  lines.erase(lines.begin(), firstWindow);  // passes without players
  const Names life = Names{"WasInit(32)", "CreateWindow(one, 60, 80, 64, 48, 32)"} + kIcon +
                     parts(64, 48) + kDrawn;
  ASSERT_GE(lines.size(), life.size());
  EXPECT_EQ(Names(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(life.size())), life);
  const auto closed = std::find(lines.begin(), lines.end(), "DestroyTexture(texture)");
  ASSERT_GE(lines.end() - closed, 4);
  EXPECT_EQ(Names(closed, closed + 4), kReleased + Names{"Delay(3)"});
}

}  // namespace
}  // namespace framesink::test
