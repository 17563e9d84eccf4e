// Readers at full speed while the owner changes the list: no reader may ever meet a player that was
// destroyed.
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

// More than there are processors, so that readers are interrupted anywhere.
constexpr int kReaders = 6;
constexpr std::chrono::milliseconds kDuration{1000};
constexpr std::uint64_t kSound = 0x5AFE5AFE5AFE5AFE;
constexpr std::uint64_t kPoison = 0xDEADDEADDEADDEAD;

// Its memory says whether it lives. Plain, so that the thread sanitizer sees a reader and the
// destructor meet; volatile, so that the poisoning is not left out as a dead store.
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

// In order and alive.
bool isSound(std::span<MarkedPlayer* const> players) {
  std::uint64_t last = 0;
  for (const MarkedPlayer* player : players) {
    if (player->mark != kSound || player->number <= last) return false;
    last = player->number;
  }
  return true;
}

class Readers {
 public:
  explicit Readers(const Players& list) {
    for (int i = 0; i < kReaders; ++i) {
      threads_.emplace_back([this, &list, rests = i % 2 == 1] { readOn(list, rests); });
    }
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
  // A reader that rests gives the owner time for many changes while it holds on to what it saw.
  void readOn(const Players& list, bool rests) {
    while (!stop_) {
      const Players::Reader reader(list);
      if (rests) std::this_thread::yield();
      if (!isSound(reader.players())) ++unsound_;
      ++reads_;
    }
  }

  std::atomic<bool> stop_{false};
  std::atomic<std::uint64_t> reads_{0};
  std::atomic<std::uint64_t> unsound_{0};
  std::vector<std::thread> threads_;
};

void changeAtRandom(Players& list, std::mt19937& random, std::uint64_t& number) {
  const std::size_t size = list.players().size();
  const auto choice = random() % 16;
  if (size == 0 || (choice < 8 && size < 12)) {
    auto player = std::make_unique<MarkedPlayer>();
    player->number = ++number;
    list.add(std::move(player));
  } else if (choice == 15) {
    list.removeAll();
  } else {
    list.remove(list.players()[random() % size]);
  }
  if (random() % 2 == 0) list.reclaim();
}

TEST(PlayerListStress, NoReaderMeetsADestroyedPlayer) {
  Players list;
  std::uint64_t added = 0;
  {
    const Readers readers(list);
    std::mt19937 random(1);
    const auto end = std::chrono::steady_clock::now() + kDuration;
    while (std::chrono::steady_clock::now() < end) changeAtRandom(list, random, added);
    EXPECT_EQ(readers.unsoundReads(), 0U);
    EXPECT_GT(readers.reads(), 0U);

    list.removeAll();
    EXPECT_TRUE(waitUntil([&] { return list.reclaim(); })) << "readers hold the owner up";
  }
  EXPECT_GT(added, 100U);
  EXPECT_EQ(MarkedPlayer::destroyed, added);
}

}  // namespace
}  // namespace framesink::test
