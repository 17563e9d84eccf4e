#include <cstdio>

#include "peer_windows.hpp"

namespace framesink::bench {

std::vector<Peer> peers() {
#if FRAMESINK_BENCH_PEERS
  return {kOpenCv, kCImg, kCImgSharing};
#else
  std::fprintf(stderr, "not compared with other libraries: built without FRAMESINK_BENCH_PEERS\n");
  return {};
#endif
}

}  // namespace framesink::bench
