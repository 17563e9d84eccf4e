// The players of a server, read by any host thread without a lock.
//
// Membership is an immutable snapshot, which every change replaces. Readers pin the current
// snapshot. A removed player leaves the list at once; reclaim(), on the owner's thread, destroys it
// when no reader that may have seen it is left. Readers never wait, and they never keep the owner
// from changing the list.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "process/thread_safety.hpp"

namespace framesink {

// Only the owner calls add, remove, removeAll and reclaim: one thread at a time, under the owner's
// lock. In the lock annotations, the list itself stands for that lock.
template <class Player>
class FRAMESINK_LOCK("player list") PlayerList {
  struct Snapshot {
    std::vector<Player*> players;
    std::vector<Player*> removed;  // left when this snapshot was replaced; destroyed with it
    Snapshot* next = nullptr;      // in the chain of spare or retired snapshots
  };

 public:
  PlayerList() = default;
  PlayerList(const PlayerList&) = delete;
  PlayerList& operator=(const PlayerList&) = delete;

  // Destroys all players. No reader may be left.
  ~PlayerList() {
    removeAll();
    destroy(std::exchange(waiting_, nullptr));
    destroy(std::exchange(retired_, nullptr));
    destroy(std::exchange(spare_, nullptr));
  }

  // Pins the membership as it is at construction. Any thread. Keep it short-lived, because removed
  // players are not destroyed meanwhile.
  class Reader {
   public:
    explicit Reader(const PlayerList& list) : readers_(list.enter()), snapshot_(list.current_) {}
    ~Reader() { readers_.fetch_sub(1); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    // In the order of addition.
    std::span<Player* const> players() const { return playersOf(snapshot_); }

   private:
    std::atomic<std::uint32_t>& readers_;
    const Snapshot* snapshot_;
  };

  bool empty() const { return current_ == nullptr; }

  // The owner's view. The owner need not pin players, because only the owner destroys them.
  std::span<Player* const> players() const { return playersOf(current_); }

  // Also allocates the snapshot that the player's removal will need, so that removal cannot fail.
  // The n-th spare has room for n players; there are as many spares as players.
  void add(std::unique_ptr<Player> player) FRAMESINK_REQUIRES(this) {
    auto spare = std::make_unique<Snapshot>();
    auto next = std::make_unique<Snapshot>();
    const std::span<Player* const> present = players();
    for (auto* players : {&spare->players, &spare->removed, &next->players, &next->removed}) {
      players->reserve(present.size() + 1);
    }
    next->players.assign(present.begin(), present.end());
    next->players.push_back(player.release());
    push(spare_, spare.release());
    replaceWith(next.release());
  }

  void remove(Player* player) noexcept FRAMESINK_REQUIRES(this) {
    Snapshot* next = pop(spare_);
    for (Player* present : players()) {
      if (present != player) next->players.push_back(present);
    }
    current_.load()->removed.push_back(player);
    if (next->players.empty()) push(retired_, std::exchange(next, nullptr));
    replaceWith(next);
  }

  void removeAll() noexcept FRAMESINK_REQUIRES(this) {
    if (empty()) return;
    Snapshot* last = current_;
    last->removed = last->players;  // fits into the reserved capacity: allocates nothing
    while (spare_ != nullptr) push(retired_, pop(spare_));
    replaceWith(nullptr);
  }

  // Destroys the removed players that no reader can see any more. True if none are left to destroy.
  bool reclaim() noexcept FRAMESINK_REQUIRES(this) {
    if (waiting_ == nullptr) {
      if (retired_ == nullptr) return true;
      waiting_ = std::exchange(retired_, nullptr);
      epoch_.fetch_add(1);  // later readers do not see waiting_ and use the other count
    }
    if (readers_[(epoch_ - 1) % 2] != 0) return false;
    destroy(std::exchange(waiting_, nullptr));
    return retired_ == nullptr;
  }

 private:
  static std::span<Player* const> playersOf(const Snapshot* snapshot) {
    return snapshot == nullptr ? std::span<Player* const>{} : std::span{snapshot->players};
  }

  // Counts a reader in the current epoch. Starts over if the epoch has changed meanwhile, because
  // an epoch that reclaim() waits for must not gain readers.
  std::atomic<std::uint32_t>& enter() const {
    for (;;) {
      const std::uint64_t epoch = epoch_;
      std::atomic<std::uint32_t>& readers = readers_[epoch % 2];
      readers.fetch_add(1);
      if (epoch_ == epoch) return readers;
      readers.fetch_sub(1);
    }
  }

  void replaceWith(Snapshot* next) FRAMESINK_REQUIRES(this) {
    Snapshot* old = current_.exchange(next);
    if (old != nullptr) push(retired_, old);
  }

  static void push(Snapshot*& chain, Snapshot* snapshot) {
    snapshot->next = chain;
    chain = snapshot;
  }

  static Snapshot* pop(Snapshot*& chain) {
    Snapshot* top = chain;
    chain = std::exchange(top->next, nullptr);
    return top;
  }

  static void destroy(Snapshot* chain) {
    while (chain != nullptr) {
      Snapshot* snapshot = pop(chain);
      for (Player* player : snapshot->removed) delete player;
      delete snapshot;
    }
  }

  std::atomic<Snapshot*> current_{nullptr};  // null: no players
  std::atomic<std::uint64_t> epoch_{1};
  mutable std::array<std::atomic<std::uint32_t>, 2> readers_{};

  // Used by the owner only.
  Snapshot* spare_ FRAMESINK_GUARDED_BY(this) = nullptr;
  // Snapshots that were replaced in the current epoch.
  Snapshot* retired_ FRAMESINK_GUARDED_BY(this) = nullptr;
  // Snapshots that were replaced in the previous epoch; reclaim() waits for that epoch's readers.
  Snapshot* waiting_ FRAMESINK_GUARDED_BY(this) = nullptr;
};

}  // namespace framesink
