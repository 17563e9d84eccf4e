// A reader of the player list that is interrupted at any instruction, by an owner who changes the
// list right then.
#include "support/interruption.hpp"

#if defined(FRAMESINK_TESTS_CAN_INTERRUPT)

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>

#include "display/player_list.hpp"

namespace framesink::test {
namespace {

// Known as dead or alive even after it was destroyed.
struct KnownPlayer {
  explicit KnownPlayer(bool& isAlive) : alive(isAlive) { alive = true; }
  ~KnownPlayer() { alive = false; }
  KnownPlayer(const KnownPlayer&) = delete;
  KnownPlayer& operator=(const KnownPlayer&) = delete;
  bool& alive;
};

using Players = PlayerList<KnownPlayer>;

// A list, and a reader of it that is interrupted while it is made.
class InterruptedReader {
 public:
  InterruptedReader() {
    add();
    add();
  }

  // The owner exchanges players after so many of the reader's instructions, and again when the
  // reader is ready. False when the reader was ready first.
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

  std::array<bool, kPlayers> alive_{};  // before the list, whose end still writes here
  std::size_t added_ = 0;
  Players list_;
  bool sawOnlyTheLiving_ = false;
};

// Were a reader counted in an epoch that has passed meanwhile, the owner would not wait for it.
// Each exchange moves the epoch on by one.
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
