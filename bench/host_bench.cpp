// Times what a frame costs a host: libUpdate of the shared library on threaded windows, compared with
// two memcpys of the frame and with the calls that show the same planes in other libraries' windows.
// Except in paced_windows.cpp, timing starts only when the display thread has shown its frame and
// sleeps, and when the other library's window shows its frame.
#include <memory>
#include <string>
#include <vector>

#include "alternating.hpp"
#include "display_passes.hpp"
#include "live_window.hpp"
#include "paced_windows.hpp"
#include "peer_windows.hpp"
#include "run_on_x_server.hpp"
#include "screen_watch.hpp"
#include "two_memcpys.hpp"

namespace framesink::bench {
namespace {

constexpr FrameSize kFullHd{1920, 1080};
constexpr FrameSize kSmall{640, 480};
constexpr test::ScreenSize kScreen{3840, 2400};  // no two windows overlap on it
constexpr const char* kTwoMemcpys = "two memcpys of the frame";

void requireShown(LiveWindow& window, const ColumnMajorFrame& frame) {
  window.update(frame);
  ScreenWatch(window.name()).requireShown(frame, awaitIdleDisplay);
}

void timeBesideMemcpys(benchmark::State& state, FrameSize size) {
  const ColumnMajorFrame frame(size, FRAMESINK_UINT8, 1);
  LiveWindow window("ours", size, FRAMESINK_UINT8);
  TwoMemcpys memcpys(size);
  requireShown(window, frame);
  compare(
      state, [&] { window.update(frame); }, [&] { memcpys.run(frame); }, awaitIdleDisplay);
  const double nanoseconds = 1e6 * state.counters["ours"];
  state.counters["ns_per_pixel"] = nanoseconds / static_cast<double>(size.pixels());
  state.SetLabel(kTwoMemcpys);
}

struct FedWindow {
  LiveWindow window;
  TwoMemcpys memcpys;
};

void timeManyWindows(benchmark::State& state, int count) {
  constexpr int kPerRow = kScreen.width / kSmall.width;
  const ColumnMajorFrame frame(kSmall, FRAMESINK_UINT8, 1);
  std::vector<std::unique_ptr<FedWindow>> windows;
  for (int i = 0; i < count; ++i) {
    const WindowPlace place{
        {kSmall.width * (i % kPerRow), kSmall.height * (i / kPerRow), kSmall.width, kSmall.height}};
    windows.emplace_back(new FedWindow{
        {"ours " + std::to_string(i), kSmall, FRAMESINK_UINT8, place}, TwoMemcpys(kSmall)});
    requireShown(windows.back()->window, frame);
  }
  const auto updateAll = [&] {
    for (const auto& fed : windows) fed->window.update(frame);
  };
  const auto copyAll = [&] {
    for (const auto& fed : windows) fed->memcpys.run(frame);
  };
  compare(state, updateAll, copyAll, awaitIdleDisplay);
  state.SetLabel("two memcpys of each window's frame");
}

// Two frames that take turns. All frames of framesink and the peer differ, so that a wait for a frame
// on the screen cannot end with an earlier frame or with the other side's.
class FrameTurns {
 public:
  FrameTurns(FramesinkDataType dataType, std::uint32_t number)
      : frames_{{kFullHd, dataType, number}, {kFullHd, dataType, number + 1}} {}

  const ColumnMajorFrame& current() const { return frames_[turn_]; }
  const ColumnMajorFrame& next() { return frames_[turn_ ^= 1]; }

 private:
  ColumnMajorFrame frames_[2];
  unsigned turn_ = 0;
};

void timeBesidePeer(benchmark::State& state, FramesinkDataType dataType, const Peer& peer) {
  FrameTurns frames(dataType, 1);
  FrameTurns peerFrames(dataType, 3);
  LiveWindow window("ours", kFullHd, dataType);
  const auto peerWindow = peer.open("peer", kFullHd, {{kFullHd.width, 0, 0, 0}});
  ScreenWatch peerWatch("peer");
  const auto pump = [&] { peerWindow->pump(); };
  requireShown(window, frames.current());
  peerWindow->show(peerFrames.current());
  peerWatch.requireShown(peerFrames.current(), pump);
  const auto settle = [&] {
    awaitIdleDisplay();
    peerWatch.awaitArrival(peerFrames.current(), pump);
  };
  compare(
      state, [&] { window.update(frames.next()); }, [&] { peerWindow->show(peerFrames.next()); },
      settle);
  state.SetLabel(peer.name);
}

void addOurs() {
  addBenchmark("libUpdate uint8", 150, [](auto& state) { timeBesideMemcpys(state, kFullHd); });
  addBenchmark("libUpdate p99.9 of four windows", kPacedRounds,
               [](auto& state) { timePacedWindows(state, kFullHd); });
  addBenchmark("libUpdate p99.9 of four windows of 1280x720", kPacedRounds, [](auto& state) {
    timePacedWindows(state, {1280, 720});
  });
  constexpr FrameSize kSizes[] = {{320, 240},   {640, 480},   {1280, 720},
                                  {1920, 1080}, {2560, 1440}, {3840, 2160}};
  for (const FrameSize size : kSizes) {
    addBenchmark("libUpdate of " + std::to_string(size.width) + "x" + std::to_string(size.height),
                 100, [size](auto& state) { timeBesideMemcpys(state, size); });
  }
  for (const int count : {1, 2, 4, 8, 16}) {
    addBenchmark("libUpdate round of " + std::to_string(count) + " windows", 100,
                 [count](auto& state) { timeManyWindows(state, count); });
  }
}

void addBesidePeers() {
  for (const Peer& peer : peers()) {
    const std::string suffix = std::string(" against ") + peer.name;
    addBenchmark("libUpdate uint8" + suffix, 50,
                 [peer](auto& state) { timeBesidePeer(state, FRAMESINK_UINT8, peer); });
    addBenchmark("libUpdate double" + suffix, 30,
                 [peer](auto& state) { timeBesidePeer(state, FRAMESINK_DOUBLE, peer); });
  }
}

}  // namespace
}  // namespace framesink::bench

int main(int count, char** arguments) {
  framesink::bench::addOurs();
  framesink::bench::addBesidePeers();
  return framesink::bench::runOnXServer(count, arguments, framesink::bench::kScreen);
}
