// How each server reacts to every kind of event: the exact SDL calls it makes and what it stores.
#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <vector>

#include "events.hpp"
#include "pass_stepper.hpp"
#include "server_fixtures.hpp"

namespace framesink::test {
namespace {

constexpr bool kThreaded = true;
constexpr Size kAskedFor{300, 200};

// The effect of one drain on a window: the SDL calls it made, and the window's state afterwards.
struct Reaction {
  Names calls;
  Size size = kAskedFor;
  Position position = kPlace;
  bool isOpen = true;

  bool operator==(const Reaction&) const = default;
};

void PrintTo(const Reaction& reaction, std::ostream* out) {
  for (const std::string& call : reaction.calls) *out << call << " ";
  PrintTo(reaction.size, out);
  *out << " at ";
  PrintTo(reaction.position, out);
  *out << (reaction.isOpen ? " open" : " closed");
}

const Names kDrawing{"SDL_LockTexture", "SDL_UnlockTexture", "SDL_RenderClear", "SDL_RenderCopy",
                     "SDL_RenderPresent"};
const Names kDestroying{"SDL_DestroyTexture", "SDL_DestroyRenderer", "SDL_DestroyWindow"};
const Names kLeavingFullscreen{"SDL_GetWindowFlags", "SDL_SetWindowFullscreen",
                               "SDL_SetWindowSize"};

Names joined(const Names& first, const Names& second) {
  Names both = first;
  both.insert(both.end(), second.begin(), second.end());
  return both;
}

class EventRulesTest : public DummyVideoTest, public testing::WithParamInterface<bool> {
 protected:
  // Opens a window and draws it. A threaded server then halts before its next pass, and drains get
  // only the events that the test feeds.
  void openPlayer(bool fullscreen = false) {
    player = addPlayer(server, {.windowSize = kAskedFor, .fullscreen = fullscreen});
    ASSERT_TRUE(hasWindow(server, player));
    window = static_cast<std::uint32_t>(recorder.last("SDL_GetWindowID").result);
    if (GetParam() == kThreaded) passes.emplace(recorder);
    deliver(server, player, plainFrame(kFrameSize, 0));
    drain();
    onlyFed.emplace(recorder.alter("SDL_PollEvent", [this](std::int64_t found) {
      if (fed == 0) return std::int64_t{0};
      --fed;
      return found;
    }));
  }
  void feed(const SDL_Event& event) {
    recorder.feed(event);
    ++fed;
  }
  void drain() {
    if (GetParam() == kThreaded) {
      ASSERT_TRUE(passes->runPass());
    } else {
      deliver(server, kNoPlayer, plainFrame(kFrameSize, 0));
    }
  }

  // Feeds the event, drains once and returns the effect.
  Reaction reactionTo(const SDL_Event& event) {
    recorder.forget();
    feed(event);
    drain();
    Reaction reaction;
    for (const SdlCall& call : recorder.calls()) {
      const bool isPass = call.function.find("Mutex") != std::string::npos ||
                          call.function == "SDL_PollEvent" || call.function == "SDL_Delay";
      if (!isPass) reaction.calls.push_back(call.function);
    }
    reaction.isOpen = server.hasOpenPlayer(player);
    if (const auto geometry = server.windowGeometry(player)) {
      reaction.size = geometry->size;
      reaction.position = geometry->position;
    }
    return reaction;
  }

  SdlServer server{GetParam() == kThreaded};
  std::uint32_t player = 0;
  std::uint32_t window = 0;
  int fed = 0;  // events fed and not yet polled
  std::optional<PassStepper> passes;
  std::optional<SdlHook> onlyFed;  // drops events of SDL's own
};
INSTANTIATE_TEST_SUITE_P(Servers, EventRulesTest, testing::Values(kThreaded, !kThreaded),
                         [](const auto& parameter) {
                           return std::string(parameter.param == kThreaded ? "Threaded"
                                                                           : "Synchronous");
                         });

// ---- Window events ----

TEST_P(EventRulesTest, EveryKindOfWindowEventHasItsReactionOrNone) {
  openPlayer();
  for (int kind = 0; kind < 256; ++kind) {
    Reaction expected;
    switch (kind) {
      case SDL_WINDOWEVENT_EXPOSED:
      case SDL_WINDOWEVENT_MAXIMIZED:
      case SDL_WINDOWEVENT_RESTORED:
        expected.calls = kDrawing;
        break;
      case SDL_WINDOWEVENT_RESIZED:
      case SDL_WINDOWEVENT_MOVED:
      case SDL_WINDOWEVENT_CLOSE:
        continue;
      default:
        break;
    }
    EXPECT_EQ(reactionTo(windowEvent(window, static_cast<Uint8>(kind), 7, 8)), expected)
        << "kind " << kind;
  }
}

TEST_P(EventRulesTest, AMoveIsRememberedWithItsSign) {
  openPlayer();
  const Position place{static_cast<std::uint32_t>(-7), 8};
  EXPECT_EQ(reactionTo(windowEvent(window, SDL_WINDOWEVENT_MOVED, -7, 8)),
            (Reaction{.calls = {}, .position = place}));
}

TEST_P(EventRulesTest, AResizeIsRememberedThenDrawn) {
  openPlayer();
  EXPECT_EQ(reactionTo(windowEvent(window, SDL_WINDOWEVENT_RESIZED, 7, 8)),
            (Reaction{.calls = joined({"SDL_GetWindowFlags"}, kDrawing), .size = {7, 8}}));
}

TEST_P(EventRulesTest, AResizeOfAFullScreenWindowIsDrawnOnly) {
  openPlayer(/*fullscreen=*/true);
  EXPECT_EQ(reactionTo(windowEvent(window, SDL_WINDOWEVENT_RESIZED, 7, 8)),
            (Reaction{.calls = joined({"SDL_GetWindowFlags"}, kDrawing)}));
}

// SDL's full screen on the desktop is two bits, 0x1001; each of them alone counts as full screen.
TEST_P(EventRulesTest, AResizeIsNotRememberedWhileAnyFullScreenFlagIsSet) {
  openPlayer();
  for (const std::int64_t flag : {0x1, 0x1000, 0x1001}) {
    const SdlHook hook =
        recorder.alter("SDL_GetWindowFlags", [=](std::int64_t flags) { return flags | flag; });
    EXPECT_EQ(reactionTo(windowEvent(window, SDL_WINDOWEVENT_RESIZED, 7, 8)),
              (Reaction{.calls = joined({"SDL_GetWindowFlags"}, kDrawing)}))
        << flag;
  }
}

TEST_P(EventRulesTest, ACloseButtonIsDeferredByTheThreadedServerAlone) {
  openPlayer();
  const Reaction reaction = reactionTo(windowEvent(window, SDL_WINDOWEVENT_CLOSE));
  EXPECT_FALSE(reaction.isOpen);
  EXPECT_EQ(reaction.calls, GetParam() == kThreaded ? Names{} : kDestroying);
  drain();
  EXPECT_EQ(recorder.count("SDL_DestroyWindow"), 1U);
}

// ---- Keys ----

TEST_P(EventRulesTest, EscapeLeavesFullScreenForTheRememberedSize) {
  openPlayer(/*fullscreen=*/true);
  EXPECT_EQ(reactionTo(keyEvent(window, 27)), (Reaction{.calls = kLeavingFullscreen}));
  const std::int64_t handle = recorder.last("SDL_SetWindowSize").arguments[0];
  EXPECT_EQ(recorder.last("SDL_SetWindowFullscreen").arguments, (Numbers{handle, 0}));
  EXPECT_EQ(recorder.last("SDL_SetWindowSize").arguments, (Numbers{handle, 300, 200}));
}

TEST_P(EventRulesTest, EscapeInAWindowedWindowOnlyAsks) {
  openPlayer();
  EXPECT_EQ(reactionTo(keyEvent(window, 27)), (Reaction{.calls = {"SDL_GetWindowFlags"}}));
}

// Every event has Escape's scancode: only the key's symbol counts, not its place on the keyboard.
TEST_P(EventRulesTest, NoOtherKeyDoesAnything) {
  openPlayer(/*fullscreen=*/true);
  for (const SDL_Keycode key : {0, 26, 28, int{SDLK_RETURN}, int{SDLK_F11}, int{SDLK_q}}) {
    SDL_Event event = keyEvent(window, key);
    event.key.keysym.scancode = SDL_SCANCODE_ESCAPE;
    EXPECT_EQ(reactionTo(event), Reaction{}) << key;
  }
  EXPECT_EQ(reactionTo(keyEvent(window, 27, SDL_KEYUP)), Reaction{});
}

// ---- Everything else ----

// SDL numbers event types in groups 0x100 apart; some groups contain a second one at 0x50.
TEST_P(EventRulesTest, NoOtherTypeOfEventDoesAnything) {
  openPlayer(/*fullscreen=*/true);
  std::vector<Uint32> groups{0x7F00, 0x8000, 0xFF00};
  for (Uint32 group = 0; group <= 0x2000; group += 0x100) groups.push_back(group);
  for (const Uint32 group : groups) {
    for (const Uint32 offset : {0x0U, 0x1U, 0x2U, 0x3U, 0x4U, 0x5U, 0x50U, 0x51U, 0xFFU}) {
      const Uint32 type = group + offset;
      if (type == SDL_WINDOWEVENT || type == SDL_KEYDOWN) continue;
      ASSERT_EQ(reactionTo(keyEvent(window, 27, type)), Reaction{}) << type;
    }
  }
}

TEST_P(EventRulesTest, AnEventWithoutEffectDoesNotEndTheDrain) {
  openPlayer();
  feed(keyEvent(window, 27, SDL_TEXTINPUT));
  feed(windowEvent(window, SDL_WINDOWEVENT_SHOWN));
  EXPECT_EQ(reactionTo(windowEvent(window, SDL_WINDOWEVENT_MOVED, 7, 8)).position,
            (Position{7, 8}));
}

// Such an event is dropped whatever its type, and later events wait for the next drain.
TEST_P(EventRulesTest, AnEventOfNobodysWindowEndsTheDrain) {
  openPlayer();
  for (const SDL_Event& foreign :
       {windowEvent(kUnknownWindow, SDL_WINDOWEVENT_EXPOSED), windowEvent(0, SDL_WINDOWEVENT_CLOSE),
        keyEvent(kUnknownWindow, 27), applicationEvent(SDL_QUIT),
        applicationEvent(SDL_CLIPBOARDUPDATE), applicationEvent(SDL_USEREVENT)}) {
    feed(foreign);
    EXPECT_EQ(reactionTo(windowEvent(window, SDL_WINDOWEVENT_EXPOSED)), Reaction{}) << foreign.type;
    recorder.forget();
    drain();
    EXPECT_EQ(recorder.count("SDL_RenderPresent"), 1U) << foreign.type;
  }
}

}  // namespace
}  // namespace framesink::test
