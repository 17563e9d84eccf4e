#include <cstdio>

#include "peer_windows.hpp"

namespace framesink::bench {

std::vector<Peer> peers() {
#if FRAMESINK_BENCH_PEERS
  return {kOpenCv, kCImg, kCImgSharing};
#else
  std::fprintf(stderr, "built without FRAMESINK_BENCH_PEERS: other libraries are left out\n");
  return {};
#endif
}

}  // namespace framesink::bench
