#include "display/player_list.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <vector>

#include "support/allocations.hpp"

namespace framesink::test {
namespace {

// Counts the living players in `count`.
struct CountedPlayer {
  CountedPlayer(int which, int& count) : number(which), alive(count) { ++alive; }
  ~CountedPlayer() { --alive; }
  CountedPlayer(const CountedPlayer&) = delete;
  CountedPlayer& operator=(const CountedPlayer&) = delete;

  const int number;
  int& alive;
};

using Players = PlayerList<CountedPlayer>;

class PlayerListTest : public testing::Test {
 protected:
  CountedPlayer* add(int number) {
    auto player = std::make_unique<CountedPlayer>(number, alive);
    CountedPlayer* address = player.get();
    list->add(std::move(player));
    return address;
  }

  bool canAddWithMemoryFor(std::size_t allocations, int number) {
    auto player = std::make_unique<CountedPlayer>(number, alive);
    try {
      const OutOfMemory afterThese(allocations);
      list->add(std::move(player));
    } catch (const std::bad_alloc&) {
      return false;
    }
    return true;
  }

  static std::vector<int> numbers(std::span<CountedPlayer* const> players) {
    std::vector<int> found;
    for (const CountedPlayer* player : players) found.push_back(player->number);
    return found;
  }
  std::vector<int> owned() const { return numbers(list->players()); }
  std::vector<int> read() const { return numbers(Players::Reader(*list).players()); }

  int alive = 0;
  std::unique_ptr<Players> list = std::make_unique<Players>();
};

using Numbers = std::vector<int>;

TEST_F(PlayerListTest, IsEmptyAtFirst) {
  EXPECT_TRUE(list->empty());
  EXPECT_EQ(owned(), Numbers{});
  EXPECT_EQ(read(), Numbers{});
  EXPECT_TRUE(list->reclaim());
}

TEST_F(PlayerListTest, KeepsTheOrderOfAddition) {
  for (int number = 0; number < 20; ++number) add(number);
  Numbers expected;
  for (int number = 0; number < 20; ++number) expected.push_back(number);
  EXPECT_FALSE(list->empty());
  EXPECT_EQ(owned(), expected);
  EXPECT_EQ(read(), expected);
}

TEST_F(PlayerListTest, KeepsTheOrderAroundARemovedPlayer) {
  add(1);
  CountedPlayer* second = add(2);
  add(3);
  list->remove(second);
  EXPECT_EQ(owned(), (Numbers{1, 3}));
  add(4);
  EXPECT_EQ(read(), (Numbers{1, 3, 4}));
}

TEST_F(PlayerListTest, ARemovedPlayerLeavesAtOnce) {
  CountedPlayer* player = add(1);
  list->remove(player);
  EXPECT_TRUE(list->empty());
  EXPECT_EQ(owned(), Numbers{});
  EXPECT_EQ(read(), Numbers{});
}

TEST_F(PlayerListTest, ARemovedPlayerIsDestroyedByReclaimOnly) {
  CountedPlayer* player = add(1);
  list->remove(player);
  EXPECT_EQ(alive, 1);
  EXPECT_TRUE(list->reclaim());
  EXPECT_EQ(alive, 0);
}

TEST_F(PlayerListTest, ReclaimDestroysNobodyWhoIsListed) {
  add(1);
  CountedPlayer* second = add(2);
  list->remove(second);
  EXPECT_TRUE(list->reclaim());
  EXPECT_EQ(alive, 1);
  EXPECT_EQ(read(), Numbers{1});
}

TEST_F(PlayerListTest, AReaderKeepsSeeingWhatItPinned) {
  CountedPlayer* player = add(1);
  const Players::Reader reader(*list);
  add(2);
  list->remove(player);
  list->reclaim();
  EXPECT_EQ(numbers(reader.players()), Numbers{1});
}

TEST_F(PlayerListTest, ARemovedPlayerOutlivesTheReadersThatSawIt) {
  CountedPlayer* player = add(1);
  auto first = std::make_unique<Players::Reader>(*list);
  auto second = std::make_unique<Players::Reader>(*list);
  list->remove(player);
  EXPECT_FALSE(list->reclaim());
  EXPECT_EQ(alive, 1);
  first.reset();
  EXPECT_FALSE(list->reclaim());
  EXPECT_EQ(alive, 1);
  second.reset();
  EXPECT_TRUE(list->reclaim());
  EXPECT_EQ(alive, 0);
}

TEST_F(PlayerListTest, ALaterReaderDoesNotHoldUpAnEarlierRemoval) {
  CountedPlayer* player = add(1);
  auto early = std::make_unique<Players::Reader>(*list);
  list->remove(player);
  EXPECT_FALSE(list->reclaim());
  const Players::Reader late(*list);
  early.reset();
  list->reclaim();
  EXPECT_EQ(alive, 0);
}

TEST_F(PlayerListTest, ARemovalWhileAnotherWaitsIsDestroyedInItsTurn) {
  CountedPlayer* first = add(1);
  CountedPlayer* second = add(2);
  auto early = std::make_unique<Players::Reader>(*list);
  list->remove(first);
  EXPECT_FALSE(list->reclaim());
  auto late = std::make_unique<Players::Reader>(*list);  // sees the second only
  list->remove(second);
  early.reset();
  EXPECT_FALSE(list->reclaim()) << "the second is still to be destroyed";
  EXPECT_EQ(alive, 1);
  EXPECT_FALSE(list->reclaim());
  EXPECT_EQ(alive, 1);
  late.reset();
  EXPECT_TRUE(list->reclaim());
  EXPECT_EQ(alive, 0);
}

TEST_F(PlayerListTest, RemovalAndReclaimAllocateNothing) {
  std::vector<CountedPlayer*> players;
  for (int number = 0; number < 50; ++number) players.push_back(add(number));
  const std::size_t before = allocationCount();
  for (std::size_t i = 0; i < players.size(); i += 2) list->remove(players[i]);
  list->reclaim();
  for (std::size_t i = 1; i < players.size(); i += 2) list->remove(players[i]);
  list->reclaim();
  EXPECT_EQ(allocationCount(), before);
  EXPECT_EQ(alive, 0);
}

TEST_F(PlayerListTest, RemovalAllocatesNothingAfterAnyMixOfChanges) {
  std::vector<CountedPlayer*> players;
  for (int round = 1; round < 30; ++round) {
    for (int i = 0; i < round % 7; ++i) players.push_back(add(round));
    const std::size_t before = allocationCount();
    for (int i = 0; i < round % 5 && !players.empty(); ++i) {
      list->remove(players.front());
      players.erase(players.begin());
    }
    if (round % 3 == 0) list->reclaim();
    EXPECT_EQ(allocationCount(), before) << "round " << round;
    EXPECT_EQ(owned().size(), players.size());
  }
  const std::size_t before = allocationCount();
  list->removeAll();
  list->reclaim();
  EXPECT_EQ(allocationCount(), before);
  EXPECT_EQ(alive, 0);
}

TEST_F(PlayerListTest, ReadersAllocateNothing) {
  add(1);
  const std::size_t before = allocationCount();
  for (int i = 0; i < 10; ++i) const Players::Reader reader(*list);
  EXPECT_EQ(allocationCount(), before);
}

TEST_F(PlayerListTest, RemoveAllEmptiesTheListAndAllocatesNothing) {
  for (int number = 0; number < 10; ++number) add(number);
  const std::size_t before = allocationCount();
  list->removeAll();
  EXPECT_TRUE(list->empty());
  EXPECT_EQ(alive, 10);
  EXPECT_TRUE(list->reclaim());
  EXPECT_EQ(allocationCount(), before);
  EXPECT_EQ(alive, 0);
}

TEST_F(PlayerListTest, RemoveAllOfNothingDoesNothing) {
  list->removeAll();
  EXPECT_TRUE(list->empty());
  EXPECT_TRUE(list->reclaim());
}

TEST_F(PlayerListTest, RemoveAllWaitsForReadersLikeAnyRemoval) {
  add(1);
  add(2);
  auto reader = std::make_unique<Players::Reader>(*list);
  list->removeAll();
  EXPECT_FALSE(list->reclaim());
  EXPECT_EQ(alive, 2);
  EXPECT_EQ(numbers(reader->players()), (Numbers{1, 2}));
  reader.reset();
  EXPECT_TRUE(list->reclaim());
  EXPECT_EQ(alive, 0);
}

TEST_F(PlayerListTest, ServesAgainAfterItWasEmptied) {
  add(1);
  list->removeAll();
  add(2);
  EXPECT_EQ(read(), Numbers{2});
  EXPECT_TRUE(list->reclaim());
  EXPECT_EQ(alive, 1);
}

TEST_F(PlayerListTest, TheDestructorDestroysEveryPlayer) {
  CountedPlayer* waiting = add(1);
  {
    const Players::Reader reader(*list);
    list->remove(waiting);
    EXPECT_FALSE(list->reclaim());
  }
  CountedPlayer* retired = add(2);
  list->remove(retired);
  add(3);
  add(4);
  EXPECT_EQ(alive, 4);
  list.reset();
  EXPECT_EQ(alive, 0);
}

// Tries each addition with memory for 0, 1, 2, ... allocations until it succeeds.
TEST_F(PlayerListTest, AnAdditionThatFailsChangesNothing) {
  for (int number = 0; number < 4; ++number) {
    const Numbers before = owned();
    std::size_t left = 0;
    while (!canAddWithMemoryFor(left, number)) {
      EXPECT_EQ(owned(), before);
      EXPECT_EQ(alive, number);
      ++left;
    }
    EXPECT_GT(left, 0U);
  }
  EXPECT_EQ(read(), (Numbers{0, 1, 2, 3}));
}

}  // namespace
}  // namespace framesink::test
