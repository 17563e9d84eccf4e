// The windows of other libraries that show frames, used as those libraries' users use them.
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
  // From the host's column-major planes to the peer's call that shows a picture.
  virtual void show(const ColumnMajorFrame& frame) = 0;
  // Lets the peer draw what it has not drawn yet.
  virtual void pump() = 0;
};

struct Peer {
  const char* name;
  std::unique_ptr<PeerWindow> (*open)(const std::string& title, FrameSize size,
                                      const WindowPlace& place);
};

// Each in a shared library of its own.
extern __attribute__((visibility("default"))) const Peer kOpenCv;
extern __attribute__((visibility("default"))) const Peer kCImg;
extern __attribute__((visibility("default"))) const Peer kCImgSharing;

// All of them; none, and a word on standard error, in a build without FRAMESINK_BENCH_PEERS.
std::vector<Peer> peers();

}  // namespace framesink::bench
