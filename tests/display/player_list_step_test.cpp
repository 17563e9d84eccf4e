// Interrupts a reader of the player list at every single instruction, and changes the list right
// then.
#include "support/interruption.hpp"

#if defined(FRAMESINK_TESTS_CAN_INTERRUPT)

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>

#include "display/player_list.hpp"

namespace framesink::test {
namespace {

// Reports whether it is alive in a flag outside itself, which can still be read after its
// destruction.
struct KnownPlayer {
  explicit KnownPlayer(bool& isAlive) : alive(isAlive) { alive = true; }
  ~KnownPlayer() { alive = false; }
  KnownPlayer(const KnownPlayer&) = delete;
  KnownPlayer& operator=(const KnownPlayer&) = delete;
  bool& alive;
};

using Players = PlayerList<KnownPlayer>;

// A list, and a reader of it that is interrupted while it is being constructed.
class InterruptedReader {
 public:
  InterruptedReader() {
    add();
    add();
  }

  // Makes the owner exchange players after `instructions` of the reader's constructor, and
  // again after the constructor. False if the constructor ended first.
  bool isInterruptedAfter(int instructions, int exchanges) {
    Interruption interruption(instructions, [&] { exchange(exchanges); });
    const Players::Reader reader(list_);
    const bool interrupted = interruption.end();
    std::array<const bool*, kPlayers> seen{};
    auto last = seen.begin();
    for (const KnownPlayer* player : reader.players()) *last++ = &player->alive;
    exchange(3);
    sawOnlyTheLiving_ = std::all_of(seen.begin(), last, [](const bool* alive) { return *alive; });
    return interrupted;
  }
  bool sawOnlyTheLiving() const { return sawOnlyTheLiving_; }

 private:
  static constexpr std::size_t kPlayers = 16;

  void add() { list_.add(std::make_unique<KnownPlayer>(alive_[added_++])); }
  void exchange(int number) {
    for (int i = 0; i < number; ++i) {
      add();
      list_.remove(list_.players().front());
      list_.reclaim();
    }
  }

  std::array<bool, kPlayers> alive_{};  // before list_, whose destructor writes here
  std::size_t added_ = 0;
  Players list_;
  bool sawOnlyTheLiving_ = false;
};

// If a reader counted itself in an epoch that has meanwhile passed, the owner would not wait for
// it. Each exchange advances the epoch by one.
TEST(PlayerListReader, MayBeInterruptedAtAnyInstruction) {
  for (const int exchanges : {1, 2, 3}) {
    int instructions = 0;
    for (bool interrupted = true; interrupted; ++instructions) {
      InterruptedReader reader;
      interrupted = reader.isInterruptedAfter(instructions, exchanges);
      ASSERT_TRUE(reader.sawOnlyTheLiving())
          << exchanges << " exchanges after " << instructions << " instructions";
    }
    EXPECT_GT(instructions, 10);
  }
}

}  // namespace
}  // namespace framesink::test

#endif
