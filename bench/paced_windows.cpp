#include "paced_windows.hpp"

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "alternating.hpp"
#include "display_passes.hpp"
#include "live_window.hpp"
#include "screen_watch.hpp"
#include "two_memcpys.hpp"

namespace framesink::bench {
namespace {

constexpr std::chrono::nanoseconds kRoundTime{1'000'000'000 / 60};

double quantileOf(std::vector<double> seconds, double quantile) {
  const auto rank = static_cast<std::ptrdiff_t>(quantile * static_cast<double>(seconds.size() - 1));
  std::nth_element(seconds.begin(), seconds.begin() + rank, seconds.end());
  return seconds[static_cast<std::size_t>(rank)];
}

// A window, and separate memory for the memcpys, as large as the window's.
struct FedWindow {
  FedWindow(int index, const ColumnMajorFrame& frame)
      : window("ours " + std::to_string(index), frame.size(), FRAMESINK_UINT8,
               {{frame.size().width * (index % 2), frame.size().height * (index / 2),
                 frame.size().width, frame.size().height}}),
        memcpys(frame.size()) {
    window.update(frame);
    ScreenWatch(window.name()).requireShown(frame, awaitIdleDisplay);
  }

  LiveWindow window;
  TwoMemcpys memcpys;
};

}  // namespace

// The display thread and the X server draw while either of the two is being timed.
void timePacedWindows(benchmark::State& state, FrameSize size) {
  const ColumnMajorFrame frame(size, FRAMESINK_UINT8, 1);
  std::vector<std::unique_ptr<FedWindow>> windows;
  for (int i = 0; i < 4; ++i) windows.push_back(std::make_unique<FedWindow>(i, frame));
  std::vector<double> ours;
  std::vector<double> other;
  const std::uint32_t presentedBefore = presentedFrames();
  const auto start = std::chrono::steady_clock::now();
  auto due = start;
  for ([[maybe_unused]] auto iteration : state) {
    for (const auto& fed : windows) {
      ours.push_back(secondsOf([&] { fed->window.update(frame); }));
      other.push_back(secondsOf([&] { fed->memcpys.run(frame); }));
    }
    state.SetIterationTime(std::chrono::duration<double>(kRoundTime).count());
    due += kRoundTime;
    std::this_thread::sleep_until(due);
  }
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  report(state, quantileOf(ours, 0.999), quantileOf(other, 0.999));
  state.counters["ours_p50"] = 1000 * quantileOf(ours, 0.5);
  state.counters["other_p50"] = 1000 * quantileOf(other, 0.5);
  state.counters["rounds_per_second"] = static_cast<double>(state.iterations()) / elapsed.count();
  state.counters["presented_per_second"] = (presentedFrames() - presentedBefore) / elapsed.count();
  state.SetLabel("two memcpys of the frame");
}

}  // namespace framesink::bench
