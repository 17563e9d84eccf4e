#include "sdl_spy.hpp"

#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "display/platform.hpp"
#include "sdl_watch.hpp"

namespace framesink::test {
namespace {

SpyState& state() {
  static auto* state = new SpyState;  // calls come until the very end of the process
  return *state;
}

// Waits until the action does not run any more.
void remove(const std::string& function, const SpyState::Action& action) {
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

SdlWatch::SdlWatch(SdlCall call) {
  SpyState& spy = state();
  if (!spy.active.load(std::memory_order_relaxed)) return;
  std::unique_lock lock(spy.mutex);
  if (!spy.active) return;
  function_ = call.function;
  call.thread = static_cast<int>(currentThread());
  spy.calls.push_back(call);
  generation_ = spy.generation;
  index_ = spy.calls.size() - 1;
  if (const auto refusal = spy.refusals.find(call.function); refusal != spy.refusals.end()) {
    const std::size_t number = ++refusal->second.seen;
    refused_ = number >= refusal->second.first && number <= refusal->second.last;
  }
  const auto found = spy.actions.find(call.function);
  if (found == spy.actions.end()) return;
  const auto action = found->second;
  ++action->underWay;
  lock.unlock();
  action->run(call);
  lock.lock();
  --action->underWay;
}

std::int64_t SdlWatch::resultToGive(std::int64_t result) const {
  if (generation_ == kUnseen) return result;
  SpyState& spy = state();
  const std::lock_guard lock(spy.mutex);
  const auto change = spy.changes.find(function_);
  if (change != spy.changes.end()) result = (*change->second)(result);
  if (spy.generation == generation_) spy.calls[index_].result = result;
  return result;
}

// ---- The test's side ----

SdlSpy::SdlSpy() {
  const std::lock_guard lock(state().mutex);
  state().active = true;
}

SdlSpy::~SdlSpy() {
  forget();
  const std::lock_guard lock(state().mutex);
  state().active = false;
  state().refusals.clear();
}

std::vector<SdlCall> SdlSpy::calls() const {
  const std::lock_guard lock(state().mutex);
  return state().calls;
}

std::vector<SdlCall> SdlSpy::calls(const std::string& function) const {
  std::vector<SdlCall> found = calls();
  std::erase_if(found, [&](const SdlCall& call) { return call.function != function; });
  return found;
}

std::vector<std::string> SdlSpy::order() const {
  std::vector<std::string> names;
  for (const SdlCall& call : calls()) names.push_back(call.function);
  return names;
}

std::size_t SdlSpy::count(const std::string& function) const {
  const std::lock_guard lock(state().mutex);
  const auto& calls = state().calls;
  return static_cast<std::size_t>(std::count_if(
      calls.begin(), calls.end(), [&](const SdlCall& call) { return call.function == function; }));
}

SdlCall SdlSpy::last(const std::string& function) const {
  const std::vector<SdlCall> found = calls(function);
  if (found.empty()) throw std::out_of_range(function + " was not called");
  return found.back();
}

void SdlSpy::forget() {
  const std::lock_guard lock(state().mutex);
  state().calls.clear();
  ++state().generation;
}

void SdlSpy::refuse(const std::string& function, std::size_t first, std::size_t last) {
  const std::lock_guard lock(state().mutex);
  state().refusals[function] = {.first = first, .last = last};
}

void SdlSpy::permit(const std::string& function) {
  const std::lock_guard lock(state().mutex);
  state().refusals.erase(function);
}

SdlHook SdlSpy::before(const std::string& function, std::function<void(const SdlCall&)> run) {
  const auto action = std::make_shared<SpyState::Action>();
  action->run = std::move(run);
  const std::lock_guard lock(state().mutex);
  state().actions[function] = action;
  return SdlHook([function, action] { remove(function, *action); });
}

SdlHook SdlSpy::alter(const std::string& function,
                      std::function<std::int64_t(std::int64_t)> change) {
  const auto own = std::make_shared<SpyState::Change>(std::move(change));
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
