// Times each frame that reaches the screen when a host submits frames as fast as it can, compared
// with other libraries' windows. Also times an idle window.
//
// For framesink, the host submits a frame as soon as the last one was shown. A frame counts when SDL
// has presented it and has waited for the X server. For a peer, every call that shows a picture
// counts as a shown frame. The two take turns of 0.8 s, with one window open at a time. Each
// turn ends when its last frame is on the screen, so it includes all drawing by the X server.
#include <benchmark/benchmark.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "alternating.hpp"
#include "display_passes.hpp"
#include "idle_pass.hpp"
#include "live_window.hpp"
#include "peer_windows.hpp"
#include "run_on_x_server.hpp"
#include "screen_watch.hpp"
#include "support/window_manager.hpp"

namespace framesink::bench {
namespace {

// Large enough for a window of 1920 x 1080 pixels with the window manager's frame.
constexpr test::ScreenSize kScreen{2048, 1200};
constexpr int kRounds = 5;
constexpr int kWarmUpFrames = 5;
constexpr std::chrono::milliseconds kSlice{800};

struct Situation {
  const char* name;
  FrameSize size;
  WindowPlace place;
};

const Situation kSituations[] = {
    {"shown frames", {1920, 1080}, {}},
    {"shown frames scaled by 1.5", {1280, 720}, {{0, 0, 1920, 1080}}},
    {"shown frames full screen",
     {1280, 720},
     {{0, 0, kScreen.width, kScreen.height}, /*fullscreen=*/true}},
};

// Returns the seconds per frame that `show` brings to the screen.
template <class Show>
double secondsPerFrame(const std::string& title, FrameSize size, const Show& show,
                       const std::function<void()>& pump) {
  using Clock = std::chrono::steady_clock;
  const ColumnMajorFrame frames[] = {{size, FRAMESINK_UINT8, 1}, {size, FRAMESINK_UINT8, 2}};
  ScreenWatch watch(title);
  for (int i = 0; i < kWarmUpFrames; ++i) show(frames[i % 2]);
  watch.requireShown(frames[(kWarmUpFrames - 1) % 2], pump);
  const auto start = Clock::now();
  unsigned count = 0;
  while (Clock::now() - start < kSlice) show(frames[count++ % 2]);
  watch.awaitArrival(frames[(count - 1) % 2], pump);
  return std::chrono::duration<double>(Clock::now() - start).count() / count;
}

double ourSecondsPerFrame(const Situation& situation) {
  LiveWindow window("ours", situation.size, FRAMESINK_UINT8, situation.place);
  awaitIdleDisplay();
  const auto showAndAwait = [&](const ColumnMajorFrame& frame) {
    const std::uint32_t before = presentedFrames();
    window.update(frame);
    awaitPresentedAfter(before);
  };
  return secondsPerFrame(window.name(), situation.size, showAndAwait, [] {});
}

double theirSecondsPerFrame(const Situation& situation, const Peer& peer) {
  const auto window = peer.open("peer", situation.size, situation.place);
  return secondsPerFrame(
      "peer", situation.size, [&](const ColumnMajorFrame& frame) { window->show(frame); },
      [&] { window->pump(); });
}

// Reports milliseconds per frame, as medians of the slices.
void timeShownFrames(benchmark::State& state, const Situation& situation,
                     const std::optional<Peer>& peer) {
  std::vector<double> ours;
  std::vector<double> theirs;
  for ([[maybe_unused]] auto iteration : state) {
    ours.push_back(ourSecondsPerFrame(situation));
    if (peer) theirs.push_back(theirSecondsPerFrame(situation, *peer));
    state.SetIterationTime(ours.back());
  }
  state.counters["ours"] = 1000 * medianOf(ours);
  state.counters["ours_per_second"] = 1 / medianOf(ours);
  if (!peer) return;
  report(state, medianOf(ours), medianOf(theirs));
  state.counters["other_per_second"] = 1 / medianOf(theirs);
  state.SetLabel(peer->name);
}

void addShownFrames(const std::string& suffix, const std::optional<Peer>& peer) {
  for (const Situation& situation : kSituations) {
    addBenchmark(situation.name + suffix, kRounds, [&situation, peer](benchmark::State& state) {
      timeShownFrames(state, situation, peer);
    });
  }
}

void addAllShownFrames() {
  const std::vector<Peer> all = peers();
  for (const Peer& peer : all) addShownFrames(std::string(" against ") + peer.name, peer);
  if (all.empty()) addShownFrames("", std::nullopt);
}

// Never ends the window manager, because SDL looks for one only when SDL starts.
void startWindowManager(test::XServer& server) { new test::WindowManager(server); }

}  // namespace
}  // namespace framesink::bench

int main(int count, char** arguments) {
  using namespace framesink::bench;
  addBenchmark("idle pass", 1, timeIdlePass);
  addAllShownFrames();
  return runOnXServer(count, arguments, kScreen, startWindowManager);
}
