// Readers run at full speed while the owner changes the list. None may find a destroyed player.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "display/player_list.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

constexpr int kReaders = 4;
constexpr std::size_t kMostPlayers = 12;
constexpr std::chrono::milliseconds kDuration{1000};
constexpr std::uint64_t kSound = 0x5AFE5AFE5AFE5AFE;
constexpr std::uint64_t kPoison = 0xDEADDEADDEADDEAD;

// `mark` changes when the player is destroyed. It is not atomic, so that the thread sanitizer sees
// a reader race with the destructor, and it is volatile, so that the compiler keeps the
// destructor's write, which nothing may read.
struct MarkedPlayer {
  ~MarkedPlayer() {
    mark = kPoison;
    ++destroyed;
  }
  volatile std::uint64_t mark = kSound;
  std::uint64_t number = 0;

  static inline std::atomic<std::uint64_t> destroyed{0};
};

using Players = PlayerList<MarkedPlayer>;

// True if all players are alive and in the order in which they were added.
bool isSound(std::span<MarkedPlayer* const> players) {
  std::uint64_t last = 0;
  for (const MarkedPlayer* player : players) {
    if (player->mark != kSound || player->number <= last) return false;
    last = player->number;
  }
  return true;
}

// The list's owner, which changes the list at random.
class Owner {
 public:
  explicit Owner(Players& list) : list_(list) {}

  void change() {
    const std::size_t size = list_.players().size();
    const auto choice = random_() % 16;
    if (size == 0 || (choice < 8 && size < kMostPlayers)) {
      auto player = std::make_unique<MarkedPlayer>();
      player->number = ++added_;
      list_.add(std::move(player));
    } else if (choice == 15) {
      list_.removeAll();
    } else {
      list_.remove(list_.players()[random_() % size]);
    }
    if (random_() % 2 == 0) list_.reclaim();
  }

  std::uint64_t added() const { return added_; }

 private:
  Players& list_;
  std::mt19937 random_{1};
  std::uint64_t added_ = 0;
};

bool isOver(std::chrono::steady_clock::time_point end) {
  return std::chrono::steady_clock::now() >= end;
}

class Readers {
 public:
  explicit Readers(const Players& list) {
    for (int i = 0; i < kReaders; ++i) threads_.emplace_back([&] { readOn(list); });
  }
  ~Readers() {
    stop_ = true;
    for (auto& thread : threads_) thread.join();
  }
  Readers(const Readers&) = delete;
  Readers& operator=(const Readers&) = delete;

  std::uint64_t reads() const { return reads_; }
  std::uint64_t unsoundReads() const { return unsound_; }

 private:
  void readOn(const Players& list) {
    while (!stop_) {
      const Players::Reader reader(list);
      if (!isSound(reader.players())) ++unsound_;
      ++reads_;
    }
  }

  std::atomic<bool> stop_{false};
  std::atomic<std::uint64_t> reads_{0};
  std::atomic<std::uint64_t> unsound_{0};
  std::vector<std::thread> threads_;
};

TEST(PlayerListStress, NoReaderMeetsADestroyedPlayer) {
  MarkedPlayer::destroyed = 0;
  Players list;
  Owner owner(list);
  {
    const Readers readers(list);
    const auto end = std::chrono::steady_clock::now() + kDuration;
    while (!isOver(end)) owner.change();
    EXPECT_EQ(readers.unsoundReads(), 0U);
    EXPECT_GT(readers.reads(), 0U);

    list.removeAll();
    EXPECT_TRUE(waitUntil([&] { return list.reclaim(); })) << "readers hold up the owner";
  }
  EXPECT_GT(owner.added(), 100U);
  EXPECT_EQ(MarkedPlayer::destroyed, owner.added());
}

}  // namespace
}  // namespace framesink::test
