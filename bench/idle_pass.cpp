#include "idle_pass.hpp"

#include <SDL.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "alternating.hpp"
#include "display_passes.hpp"
#include "live_window.hpp"
#include "screen_watch.hpp"

namespace framesink::bench {
namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 6;
constexpr std::chrono::milliseconds kSlice{1000};

std::string firstWordOf(const fs::path& path) {
  std::string word;
  std::ifstream(path) >> word;
  return word;
}

fs::path threadNamed(const std::string& name) {
  for (const auto& thread : fs::directory_iterator("/proc/self/task")) {
    if (firstWordOf(thread.path() / "comm") == name) return thread.path();
  }
  throw std::runtime_error("there is no thread \"" + name + "\"");
}

// The thread's processor time up to its last sleep, as the scheduler counts it.
double cpuSeconds(const fs::path& thread) {
  return 1e-9 * std::stod(firstWordOf(thread / "schedstat"));
}

// Measures for kSlice. No other thread may make passes meanwhile.
double cpuSecondsPerPass(const fs::path& thread) {
  const std::uint32_t passes = endedPasses();
  const double seconds = cpuSeconds(thread);
  std::this_thread::sleep_for(kSlice);
  return (cpuSeconds(thread) - seconds) / (endedPasses() - passes);
}

// A thread that polls SDL while the window is open, as the display thread does.
class BareLoop {
 public:
  BareLoop() : mutex_(SDL_CreateMutex()), thread_([this] { run(); }) { id_.wait(0); }
  ~BareLoop() {
    leaving_ = true;
    thread_.join();
    SDL_DestroyMutex(mutex_);
  }

  fs::path thread() const { return fs::path("/proc/self/task") / std::to_string(id_); }

 private:
  void run() {
    exemptThisThreadFromHold();
    id_ = gettid();
    id_.notify_all();
    SDL_Event event;
    while (!leaving_) {
      SDL_LockMutex(mutex_);
      SDL_PollEvent(&event);
      SDL_UnlockMutex(mutex_);
      SDL_Delay(1);
    }
  }

  SDL_mutex* mutex_;
  std::atomic<bool> leaving_{false};
  std::atomic<pid_t> id_{0};
  std::thread thread_;
};

}  // namespace

void timeIdlePass(benchmark::State& state) {
  constexpr FrameSize kSize{640, 480};
  const ColumnMajorFrame frame(kSize, FRAMESINK_UINT8, 1);
  LiveWindow window("idle", kSize, FRAMESINK_UINT8);
  window.update(frame);
  ScreenWatch(window.name()).requireShown(frame, awaitIdleDisplay);
  const fs::path displayThread = threadNamed("sdlVideoPlayers");
  std::vector<double> ours;
  std::vector<double> bare;
  for ([[maybe_unused]] auto iteration : state) {
    for (int round = 0; round < kRounds; ++round) {
      ours.push_back(cpuSecondsPerPass(displayThread));
      const DisplayThreadHold hold;
      const BareLoop loop;
      bare.push_back(cpuSecondsPerPass(loop.thread()));
    }
    state.SetIterationTime(2.0 * kRounds * std::chrono::duration<double>(kSlice).count());
  }
  report(state, medianOf(ours), medianOf(bare));
  state.SetLabel("bare loop of lock, poll, unlock, sleep");
}

}  // namespace framesink::bench
