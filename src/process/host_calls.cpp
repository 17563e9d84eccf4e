#include "process/host_calls.hpp"

#include <array>
#include <atomic>

#include "process/platform.hpp"
#include "process/sdl_gate.hpp"
#include "process/x11_session.hpp"

namespace framesink {
namespace {

// Hosts make one call at a time, so these slots suffice. If more calls run at once, the rest are
// counted but their threads are not recorded.
constexpr std::size_t kKnownCalls = 32;

constinit std::array<std::atomic<OsThreadId>, kKnownCalls> callers{};
constinit std::atomic<std::uint32_t> callsUnderWay{0};
constinit std::atomic<bool> ended{false};
constinit std::atomic<bool> givenUp{false};  // a wait has failed: never wait again

constinit std::atomic<std::uint64_t> owner{0};  // id of the process that calls; 0: none yet

std::size_t enter(OsThreadId thread) {
  for (std::size_t slot = 0; slot < kKnownCalls; ++slot) {
    OsThreadId free = 0;
    if (callers[slot].compare_exchange_strong(free, thread)) return slot;
  }
  return kKnownCalls;
}

bool isCaller(OsThreadId thread) {
  for (const auto& caller : callers) {
    if (caller == thread) return true;
  }
  return false;
}

bool isFork() { return owner != 0 && owner != currentProcess(); }

// A fork has no thread but the one that forked, so calls of other threads never end there.
void forgetCallsOfOtherThreads() {
  std::uint32_t own = 0;
  for (auto& caller : callers) {
    if (caller == currentThread()) {
      ++own;
    } else {
      caller = 0;
    }
  }
  callsUnderWay = own;
}

void claimAtFirstCall() {
  std::uint64_t nobody = 0;
  if (owner == nobody) owner.compare_exchange_strong(nobody, currentProcess());
}

}  // namespace

void claimForThisProcess() {
  if (isFork()) forgetCallsOfOtherThreads();
  owner = currentProcess();
}

// Counts itself before it reads `ended`, while endHostCalls sets `ended` before it reads the count.
// So either the call sees that the library has ended, or endHostCalls waits for the call.
HostCall::HostCall() : slot_(kKnownCalls) {
  callsUnderWay.fetch_add(1);
  open_ = !ended;
  if (!open_) return;
  claimAtFirstCall();
  slot_ = enter(currentThread());
  stayLoadedIfChained();
}

HostCall::~HostCall() {
  if (slot_ < kKnownCalls) callers[slot_] = 0;
  callsUnderWay.fetch_sub(1);
}

bool endHostCalls(WaitBudget& budget) {
  ended = true;
  if (givenUp || isFork() || areOtherThreadsGone()) return false;
  if (isCaller(currentThread()) || sdlGate.isHeldByThisThread()) return false;
  // Calls isSpent first, because its first call starts the budget's clock.
  while (!budget.isSpent() && callsUnderWay != 0) sleepFor(std::chrono::milliseconds(1));
  givenUp = callsUnderWay != 0;
  return !givenUp;
}

}  // namespace framesink
