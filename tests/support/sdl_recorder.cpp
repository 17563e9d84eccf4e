#include "support/sdl_recorder.hpp"

#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "process/display_loss.hpp"
#include "process/platform.hpp"
#include "support/sdl_recorder_state.hpp"

namespace framesink::test {
namespace {

RecorderState& state() {
  static auto* state = new RecorderState;  // never deleted: calls come until the process's very end
  return *state;
}

// Removes the action and waits until it no longer runs.
void remove(const std::string& function, const RecorderState::Action& action) {
  std::unique_lock lock(state().mutex);
  const auto found = state().actions.find(function);
  if (found != state().actions.end() && found->second.get() == &action) {
    state().actions.erase(found);
  }
  while (action.underWay != 0) {
    lock.unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    lock.lock();
  }
}

}  // namespace

// ---- The wrappers' side ----

bool isRecording() { return state().active.load(std::memory_order_relaxed); }

RecordedCall::RecordedCall(SdlCall call) {
  RecorderState& recorder = state();
  std::unique_lock lock(recorder.mutex);
  if (!recorder.active) return;
  function_ = call.function;
  call.thread = static_cast<int>(currentThread());
  refused_ = countRefusals(recorder, call);
  call.refused = refused_;
  call.countable = call.fallible && !recorder.areRefusalsSuspended;
  call.losable = isLosable(call);
  if (isLoss(recorder, call)) loss_ = recorder.lossMoment;
  recorder.calls.push_back(call);
  generation_ = recorder.generation;
  index_ = recorder.calls.size() - 1;
  const auto found = recorder.actions.find(call.function);
  if (found == recorder.actions.end()) return;
  const auto action = found->second;
  ++action->underWay;
  lock.unlock();
  action->run(call);
  lock.lock();
  --action->underWay;
}

bool RecordedCall::countRefusals(RecorderState& recorder, const SdlCall& call) {
  if (recorder.areRefusalsSuspended) return false;
  const bool refused =
      call.fallible && recorder.callsToRefusal != 0 && --recorder.callsToRefusal == 0;
  const auto refusal = recorder.refusals.find(call.function);
  if (refusal == recorder.refusals.end()) return refused;
  const std::size_t number = ++refusal->second.seen;
  return refused || (number >= refusal->second.first && number <= refusal->second.last);
}

bool RecordedCall::isLosable(const SdlCall& call) {
  return isCallingSdl() && !isDisplayLost() && call.function != "SDL_CreateThread";
}

bool RecordedCall::isLoss(RecorderState& recorder, const SdlCall& call) {
  return call.losable && recorder.callsToLoss != 0 && --recorder.callsToLoss == 0;
}

// Throws with the recorder's lock free.
void RecordedCall::loseAt(LossMoment moment) const {
  if (loss_ != moment) return;
  {
    RecorderState& recorder = state();
    const std::lock_guard lock(recorder.mutex);
    recorder.lossFunction = function_;
    recorder.callsUpToLoss = recorder.calls.size();
  }
  loseDisplay();
}

bool RecordedCall::takeFedEvent(SDL_Event* event) const {
  const std::lock_guard lock(state().mutex);
  if (generation_ == kUnseen || state().events.empty()) return false;
  *event = state().events.front();
  state().events.pop_front();
  return true;
}

std::int64_t RecordedCall::answer(std::int64_t result, const char* error) const {
  if (generation_ == kUnseen) return result;
  RecorderState& recorder = state();
  const std::lock_guard lock(recorder.mutex);
  const auto change = recorder.changes.find(function_);
  if (change != recorder.changes.end() && !refused_) result = (*change->second)(result);
  if (recorder.generation == generation_) {
    recorder.calls[index_].result = result;
    recorder.calls[index_].error = error;
  }
  return result;
}

// ---- The test's side ----

SdlRecorder::SdlRecorder() {
  const std::lock_guard lock(state().mutex);
  state().active = true;
}

SdlRecorder::~SdlRecorder() {
  forget();
  const std::lock_guard lock(state().mutex);
  state().active = false;
  state().refusals.clear();
  state().callsToRefusal = 0;
  state().areRefusalsSuspended = false;
  state().callsToLoss = 0;
  state().lossFunction.reset();
  state().events.clear();
}

std::vector<SdlCall> SdlRecorder::calls() const {
  const std::lock_guard lock(state().mutex);
  return state().calls;
}

std::vector<SdlCall> SdlRecorder::calls(const std::string& function) const {
  std::vector<SdlCall> found = calls();
  std::erase_if(found, [&](const SdlCall& call) { return call.function != function; });
  return found;
}

std::vector<std::string> SdlRecorder::order() const {
  std::vector<std::string> names;
  for (const SdlCall& call : calls()) names.push_back(call.function);
  return names;
}

std::size_t SdlRecorder::count(const std::string& function) const {
  const std::lock_guard lock(state().mutex);
  const auto& calls = state().calls;
  return static_cast<std::size_t>(std::count_if(
      calls.begin(), calls.end(), [&](const SdlCall& call) { return call.function == function; }));
}

SdlCall SdlRecorder::last(const std::string& function) const {
  const std::vector<SdlCall> found = calls(function);
  if (found.empty()) throw std::out_of_range(function + " was not called");
  return found.back();
}

void SdlRecorder::forget() {
  const std::lock_guard lock(state().mutex);
  state().calls.clear();
  state().callsUpToLoss = 0;
  ++state().generation;
}

void SdlRecorder::refuse(const std::string& function, std::size_t first, std::size_t last) {
  const std::lock_guard lock(state().mutex);
  state().refusals[function] = {.first = first, .last = last};
}

void SdlRecorder::permit(const std::string& function) {
  const std::lock_guard lock(state().mutex);
  state().refusals.erase(function);
}

void SdlRecorder::refuseNth(std::size_t number) {
  const std::lock_guard lock(state().mutex);
  state().callsToRefusal = number;
}

void SdlRecorder::loseDisplayAt(std::size_t number, LossMoment moment) {
  const std::lock_guard lock(state().mutex);
  state().callsToLoss = number;
  state().lossMoment = moment;
}

std::optional<std::string> SdlRecorder::lossFunction() const {
  const std::lock_guard lock(state().mutex);
  return state().lossFunction;
}

std::vector<SdlCall> SdlRecorder::callsAfterLoss() const {
  const std::lock_guard lock(state().mutex);
  if (!state().lossFunction) return {};
  const auto first = static_cast<std::ptrdiff_t>(state().callsUpToLoss);
  return {state().calls.begin() + first, state().calls.end()};
}

void SdlRecorder::suspendRefusals() {
  const std::lock_guard lock(state().mutex);
  state().areRefusalsSuspended = true;
}

void SdlRecorder::resumeRefusals() {
  const std::lock_guard lock(state().mutex);
  state().areRefusalsSuspended = false;
}

void SdlRecorder::feed(const SDL_Event& event) {
  const std::lock_guard lock(state().mutex);
  state().events.push_back(event);
}

SdlHook SdlRecorder::before(const std::string& function, std::function<void(const SdlCall&)> run) {
  const auto action = std::make_shared<RecorderState::Action>();
  action->run = std::move(run);
  const std::lock_guard lock(state().mutex);
  state().actions[function] = action;
  return SdlHook([function, action] { remove(function, *action); });
}

SdlHook SdlRecorder::alter(const std::string& function,
                           std::function<std::int64_t(std::int64_t)> change) {
  const auto own = std::make_shared<RecorderState::Change>(std::move(change));
  const std::lock_guard lock(state().mutex);
  state().changes[function] = own;
  return SdlHook([function, own] {
    const std::lock_guard removal(state().mutex);
    if (state().changes[function] == own) state().changes.erase(function);
  });
}

bool isDisplayThread() {
  char name[16] = "";
  pthread_getname_np(pthread_self(), name, sizeof name);
  return std::strcmp(name, "sdlVideoPlayers") == 0;
}

}  // namespace framesink::test
