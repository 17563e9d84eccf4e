#include "process/sdl_gate.hpp"

namespace framesink {

constinit SdlGate sdlGate;

void SdlGate::lock() {
  mutex_.lock();
  if (depth_++ == 0) owner_ = currentThread();
}

void SdlGate::unlock() {
  if (--depth_ == 0) owner_ = 0;
  mutex_.unlock();
}

}  // namespace framesink
