// The state that SdlRecorder shares with the wrapped SDL functions.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "support/sdl_recorder.hpp"

namespace framesink::test {

struct RecorderState {
  struct Refusal {
    std::size_t first = 1;
    std::size_t last = SdlRecorder::kForever;
    std::size_t seen = 0;
  };

  struct Action {
    std::function<void(const SdlCall&)> run;
    int underWay = 0;
  };
  using Change = std::function<std::int64_t(std::int64_t)>;

  // Read without the mutex and unordered: while no recorder lives, the wrappers must not
  // synchronise threads, or they would hide races from the thread sanitizer.
  std::atomic<bool> active{false};
  std::mutex mutex;
  std::uint64_t generation = 0;  // of `calls`; grows when they are forgotten
  std::vector<SdlCall> calls;
  bool areRefusalsSuspended = false;
  std::map<std::string, Refusal> refusals;
  std::size_t callsToRefusal = 0;  // fallible calls up to the one that fails; 0: none will fail
  std::deque<SDL_Event> events;    // to feed

  std::size_t callsToLoss = 0;  // losable calls up to the one that loses the display; 0: none will
  LossMoment lossMoment = LossMoment::kInsteadOfCall;
  std::optional<std::string> lossFunction;
  std::size_t callsUpToLoss = 0;  // recorded before the display was lost

  std::map<std::string, std::shared_ptr<Action>> actions;
  std::map<std::string, std::shared_ptr<Change>> changes;
};

bool isRecording();

// One call; the constructor records it. Call loseAt before and after SDL is called.
class RecordedCall {
 public:
  explicit RecordedCall(SdlCall call);
  bool isRefused() const { return refused_; }
  // Returns true, and the event, if the test has fed one.
  bool takeFedEvent(SDL_Event* event) const;
  // What the caller gets instead of `result`. `error` is SDL's error text if the call failed.
  std::int64_t answer(std::int64_t result, const char* error) const;
  // Loses the display, and throws, if this call is to lose it at this moment.
  void loseAt(LossMoment moment) const;

 private:
  static constexpr std::uint64_t kUnseen = UINT64_MAX;

  bool countRefusals(RecorderState& state, const SdlCall& call);
  static bool isLosable(const SdlCall& call);
  static bool isLoss(RecorderState& state, const SdlCall& call);

  std::string function_;
  bool refused_ = false;
  std::optional<LossMoment> loss_;
  std::uint64_t generation_ = kUnseen;
  std::size_t index_ = 0;
};

template <class Value>
std::int64_t asNumber(Value value) {
  if constexpr (std::is_pointer_v<Value>) {
    return static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(value));
  } else {
    return static_cast<std::int64_t>(value);
  }
}

template <class Value>
Value fromNumber(std::int64_t number) {
  if constexpr (std::is_pointer_v<Value>) {
    return reinterpret_cast<Value>(static_cast<std::intptr_t>(number));
  } else {
    return static_cast<Value>(number);
  }
}

template <class Value>
void describe(SdlCall& call, Value value) {
  call.arguments.push_back(asNumber(value));
  if constexpr (std::is_same_v<Value, const char*>) call.texts.emplace_back(value);
}

template <class... Arguments>
SdlCall describedCall(const char* function, Arguments... arguments) {
  SdlCall call;
  call.function = function;
  (describe(call, arguments), ...);
  return call;
}

}  // namespace framesink::test
