// Makes one allocation of an export fail: first the first one, then the second, and so on. Each
// time, the export does all of its work or nothing, and the next call works as usual.
#include <SDL.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <tuple>

#include "failing_allocation_stage.hpp"
#include "support/allocations.hpp"
#include "support/wait_until.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

// What a host does while an allocation fails, and what it has done before.
struct Scenario {
  const char* name;
  void (*prepare)(Stage& stage);
  void (*act)(Stage& stage);
  bool allocates = true;         // act() allocates on the host's thread
  bool mayLeaveNothing = false;  // a failed act() may forget the name
};

void nothing(Stage&) {}
void opened(Stage& stage) { stage.create(kFrame, 1); }
void closed(Stage& stage) { stage.create(kFrame, 0); }

const Scenario kWindowMakers[] = {
    {.name = "Create", .prepare = nothing, .act = opened},
    {.name = "CreateAgainForOtherFrames",
     .prepare = opened,
     .act = [](Stage& stage) { stage.create(kOtherFrame, 1); },
     .mayLeaveNothing = true},
    {.name = "OpenWindow", .prepare = closed, .act = [](Stage& stage) { stage.openWindow(); }},
};

const Scenario kOthers[] = {
    {.name = "CreateWithoutAWindow", .prepare = nothing, .act = closed},
    {.name = "CreateAgainUnchanged", .prepare = opened, .act = opened},
    {.name = "Update",
     .prepare = opened,
     .act = [](Stage& stage) { stage.update(); },
     .allocates = false},
    {.name = "DestroyBlock",
     .prepare = opened,
     .act = [](Stage& stage) { stage.destroyBlocks(); },
     .allocates = false},
    {.name = "OpenAnOpenWindow",
     .prepare = opened,
     .act = [](Stage& stage) { stage.openWindow(); }},
    {.name = "Rename", .prepare = opened, .act = [](Stage& stage) { stage.rename(); }},
    {.name = "DestroyWindow",
     .prepare = opened,
     .act = [](Stage& stage) { stage.destroyWindow(); }},
    {.name = "Ask", .prepare = opened, .act = [](Stage& stage) { stage.ask(); }},
};

std::ostream& operator<<(std::ostream& out, const Scenario& scenario) {
  return out << scenario.name;
}

using Setting = std::tuple<Scenario, std::uint8_t>;

// What is seen after the scenario without failures. The server and its thread then stay.
Seen undisturbed(const Scenario& scenario, std::uint8_t synchronous) {
  Stage stage(synchronous);
  scenario.prepare(stage);
  stage.seen();
  scenario.act(stage);
  return stage.seen();
}

// Tries with the first allocation failing, then the second, ... until a try makes fewer. Every try
// has to leave as many memory blocks in use as before. Returns how many tries failed.
template <class Try>
std::size_t failOneByOne(Try failsAt) {
  const std::size_t inUse = blocksInUse();
  for (std::size_t number = 1;; ++number) {
    const bool failed = failsAt(number);
    if (testing::Test::HasFailure() || !failed) return number - 1;
    const bool isGivenBack = waitUntil([&] { return blocksInUse() == inUse; });
    EXPECT_TRUE(isGivenBack) << "allocation " << number << ": " << inUse << " blocks in use became "
                             << blocksInUse();
    if (!isGivenBack) return number;
  }
}

void report(std::size_t failures) {
  testing::Test::RecordProperty("failures", static_cast<int>(failures));
}

// ---- On the host's thread ----

class HostsAllocation : public BareXTest, public testing::WithParamInterface<Setting> {
 protected:
  const Scenario scenario = std::get<0>(GetParam());
  const std::uint8_t synchronous = std::get<1>(GetParam());
};

std::string testName(const testing::TestParamInfo<Setting>& test) {
  const auto& [scenario, synchronous] = test.param;
  return std::string(scenario.name) + (synchronous != 0 ? "Synchronous" : "Threaded");
}
INSTANTIATE_TEST_SUITE_P(In, HostsAllocation,
                         testing::Combine(testing::ValuesIn(kWindowMakers), testing::Values(0, 1)),
                         testName);
INSTANTIATE_TEST_SUITE_P(InOther, HostsAllocation,
                         testing::Combine(testing::ValuesIn(kOthers), testing::Values(0, 1)),
                         testName);

TEST_P(HostsAllocation, ThatFailsLeavesTheWholeOrNothing) {
  const Seen whole = undisturbed(scenario, synchronous);
  const auto failsAt = [&](std::size_t number) {
    Stage stage(synchronous);
    scenario.prepare(stage);
    const Seen before = stage.seen();
    bool failed = false;
    {
      const FailingAllocation failing(number);
      scenario.act(stage);
      failed = failing.hasFailed();
    }
    const Seen now = stage.seen();
    const bool isUndone = now == before || (scenario.mayLeaveNothing && now.isNothing());
    EXPECT_TRUE(now == whole || (failed && isUndone)) << number << ": " << now;
    scenario.act(stage);
    EXPECT_EQ(stage.seen(), whole) << "again after " << number;
    return failed;
  };
  const std::size_t failures = failOneByOne(failsAt);
  EXPECT_EQ(failures > 0, scenario.allocates);
  report(failures);
}

// The first call of a process also makes the server, its mutex and its display thread.
class FirstCallOfAProcess : public BareXTest, public testing::WithParamInterface<std::uint8_t> {};

std::string displayName(const testing::TestParamInfo<std::uint8_t>& test) {
  return test.param != 0 ? "Synchronous" : "Threaded";
}
INSTANTIATE_TEST_SUITE_P(Display, FirstCallOfAProcess, testing::Values(0, 1), displayName);

TEST_P(FirstCallOfAProcess, LeavesNothingWhenAnAllocationFails) {
  std::size_t number = 0;
  for (bool failed = true; failed;) {
    Stage stage(GetParam());
    const FailingAllocation failing(++number);
    stage.create(kFrame, 1);
    failed = failing.hasFailed();
    const OutOfMemory enough(SIZE_MAX);
    ASSERT_EQ(stage.seen().isNothing(), failed) << number;
  }
  EXPECT_GT(number, 1U);
  report(number - 1);
}

// ---- On the display thread ----

class DisplayThreadsAllocation : public BareXTest, public testing::WithParamInterface<Scenario> {};

INSTANTIATE_TEST_SUITE_P(In, DisplayThreadsAllocation, testing::ValuesIn(kWindowMakers),
                         [](const auto& test) { return std::string(test.param.name); });

// Host calls go on working, and none waits for the window.
TEST_P(DisplayThreadsAllocation, ThatFailsLeavesThePlayerWithoutAWindow) {
  const Scenario& scenario = GetParam();
  const Seen whole = undisturbed(scenario, 0);
  const auto failsAt = [&](std::size_t number) {
    bool failed = false;
    {
      Stage stage(0);
      scenario.prepare(stage);
      stage.seen();
      const FailingAllocation failing(number, FailingAllocation::Of::kOtherThreads);
      scenario.act(stage);
      const bool without = stage.isOpenWithoutWindow();
      failed = failing.hasFailed();
      EXPECT_EQ(without, failed) << number;
      stage.update();
      stage.ask();
      stage.openWindow();
      EXPECT_EQ(stage.isOpenWithoutWindow(), failed) << number;
      stage.rename();
    }
    EXPECT_EQ(undisturbed(scenario, 0), whole) << "again after " << number;
    return failed;
  };
  const std::size_t failures = failOneByOne(failsAt);
  EXPECT_GT(failures, 0U);
  report(failures);
}

// The display thread takes the events of synchronous windows from SDL's queue too, and keeps them
// for their server.
class HandOver : public BareXTest {};

TEST_F(HandOver, OfEventsWithoutMemoryLosesOneEvent) {
  Stage threaded(0);
  threaded.create(kFrame, 1);
  threaded.seen();
  std::size_t number = 0;
  for (bool failed = true; failed;) {
    Stage synchronous(1);
    const FailingAllocation failing(++number, FailingAllocation::Of::kOtherThreads);
    synchronous.create(kFrame, 1);
    ASSERT_TRUE(waitUntil([] { return SDL_HasEvents(SDL_FIRSTEVENT, SDL_LASTEVENT) == 0; }));
    // The display thread empties the queue before it keeps the event, so wait a little longer.
    failed = waitUntil([&] { return failing.hasFailed(); }, std::chrono::milliseconds(100));
    synchronous.update();
    EXPECT_EQ(synchronous.seen().old.open, true);
  }
  EXPECT_GT(number, 1U);
  report(number - 1);
}

}  // namespace
}  // namespace framesink::test
