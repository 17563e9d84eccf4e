// Windows of other libraries, which the benchmarks use as those libraries' users do.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "column_major_frame.hpp"
#include "live_window.hpp"

namespace framesink::bench {

class PeerWindow {
 public:
  virtual ~PeerWindow() = default;
  // Converts the host's column-major planes and calls the peer's function that shows a picture.
  virtual void show(const ColumnMajorFrame& frame) = 0;
  // Lets the peer finish drawing.
  virtual void pump() = 0;
};

struct Peer {
  const char* name;
  std::unique_ptr<PeerWindow> (*open)(const std::string& title, FrameSize size,
                                      const WindowPlace& place);
};

// Each peer is in a separate shared library.
extern __attribute__((visibility("default"))) const Peer kOpenCv;
extern __attribute__((visibility("default"))) const Peer kCImg;
extern __attribute__((visibility("default"))) const Peer kCImgSharing;

// Returns all peers. Without FRAMESINK_BENCH_PEERS, returns none and prints so on standard error.
std::vector<Peer> peers();

}  // namespace framesink::bench
