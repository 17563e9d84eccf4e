#include "display/event_inbox.hpp"

#include <gtest/gtest.h>

#include <optional>

#include "events.hpp"
#include "support/allocations.hpp"

namespace framesink::test {
namespace {

std::optional<SDL_Event> taken(EventInbox& inbox) {
  SDL_Event event;
  return inbox.take(event) ? std::optional(event) : std::nullopt;
}

TEST(EventInbox, IsEmptyAtFirst) {
  EventInbox inbox;
  EXPECT_FALSE(taken(inbox));
}

TEST(EventInbox, GivesEventsOutOldestFirst) {
  EventInbox inbox;
  inbox.put(windowEvent(1, SDL_WINDOWEVENT_EXPOSED));
  inbox.put(windowEvent(1, SDL_WINDOWEVENT_MOVED));
  inbox.put(windowEvent(1, SDL_WINDOWEVENT_CLOSE));
  EXPECT_EQ(taken(inbox)->window.event, SDL_WINDOWEVENT_EXPOSED);
  EXPECT_EQ(taken(inbox)->window.event, SDL_WINDOWEVENT_MOVED);
  EXPECT_EQ(taken(inbox)->window.event, SDL_WINDOWEVENT_CLOSE);
  EXPECT_FALSE(taken(inbox));
}

TEST(EventInbox, KeepsTheLatestOfEachKindAndWindow) {
  EventInbox inbox;
  for (int i = 1; i <= 1000; ++i) inbox.put(windowEvent(1, SDL_WINDOWEVENT_MOVED, i, 2 * i));
  const auto event = taken(inbox);
  ASSERT_TRUE(event);
  EXPECT_EQ(event->window.data1, 1000);
  EXPECT_EQ(event->window.data2, 2000);
  EXPECT_FALSE(taken(inbox));
}

TEST(EventInbox, KeepsTheEventsOfEachWindowApart) {
  EventInbox inbox;
  inbox.put(windowEvent(1, SDL_WINDOWEVENT_MOVED, 10));
  inbox.put(windowEvent(2, SDL_WINDOWEVENT_MOVED, 20));
  EXPECT_EQ(taken(inbox)->window.data1, 10);
  EXPECT_EQ(taken(inbox)->window.data1, 20);
}

TEST(EventInbox, KeepsEscape) {
  EventInbox inbox;
  inbox.put(keyEvent(7, SDLK_ESCAPE));
  const auto event = taken(inbox);
  ASSERT_TRUE(event);
  EXPECT_EQ(event->type, SDL_KEYDOWN);
  EXPECT_EQ(event->key.windowID, 7U);
  EXPECT_EQ(event->key.keysym.sym, SDLK_ESCAPE);
}

TEST(EventInbox, KeepsOneEscapeOfEachWindowBesideItsOtherEvents) {
  EventInbox inbox;
  inbox.put(windowEvent(7, SDL_WINDOWEVENT_MOVED));
  for (int i = 0; i < 3; ++i) inbox.put(keyEvent(7, SDLK_ESCAPE));
  inbox.put(keyEvent(8, SDLK_ESCAPE));
  EXPECT_EQ(taken(inbox)->type, SDL_WINDOWEVENT);
  EXPECT_EQ(taken(inbox)->key.windowID, 7U);
  EXPECT_EQ(taken(inbox)->key.windowID, 8U);
  EXPECT_FALSE(taken(inbox));
}

TEST(EventInbox, DropsWhatNoDrainActsOn) {
  EventInbox inbox;
  inbox.put(applicationEvent(SDL_MOUSEMOTION));
  inbox.put(applicationEvent(SDL_QUIT));
  inbox.put(keyEvent(1, SDLK_a));
  inbox.put(keyEvent(1, SDLK_ESCAPE, SDL_KEYUP));
  EXPECT_FALSE(taken(inbox));
}

TEST(EventInbox, MissesAnEventWhenMemoryRunsOut) {
  EventInbox inbox;
  {
    const OutOfMemory none;
    inbox.put(windowEvent(1, SDL_WINDOWEVENT_CLOSE));
  }
  EXPECT_FALSE(taken(inbox));
  inbox.put(windowEvent(1, SDL_WINDOWEVENT_CLOSE));
  EXPECT_TRUE(taken(inbox));
}

}  // namespace
}  // namespace framesink::test
