#include "display/sdl_player.hpp"

#include <cstring>
#include <utility>

#include "display/tearing.hpp"

namespace framesink {

SdlPlayer::SdlPlayer(const std::uint8_t* initialFrame, WindowRequest request, PlayerId playerId)
    : request_(std::move(request)),
      frameBytes_(frameBytes(request_.frameSize)),
      playerId_(playerId),
      buffer1_(std::make_unique_for_overwrite<std::uint8_t[]>(frameBytes_)),
      buffer2_(std::make_unique_for_overwrite<std::uint8_t[]>(frameBytes_)) {
  submitFrame(initialFrame);
}

SdlPlayer::~SdlPlayer() { delete window_.load(); }

// From construction on, the pair (writeState, displayBuffer) runs (0, 0), (1, 2), (2, 1), (1, 2),
// ...: each frame goes to the buffer that is not marked for display, which is then marked. If a
// pair marks the buffer that is to be written, nothing is copied, deliberately.
void SdlPlayer::submitFrame(const std::uint8_t* frame) {
  const BufferMarks marks = marks_.load(std::memory_order_relaxed);
  const std::uint32_t target = marks.writeState == 1 ? 1 : 2;
  if (marks.displayBuffer != target) {
    if (frameBytes_ != 0) {
      const AcceptedTearing tearing;
      std::memcpy(target == 1 ? buffer1_.get() : buffer2_.get(), frame, frameBytes_);
    }
    marks_.store({.displayBuffer = target, .writeState = 3 - target}, std::memory_order_release);
  }
  newFrame_.store(true, std::memory_order_release);
}

void SdlPlayer::showNewestFrame() {
  newFrame_.exchange(false, std::memory_order_acq_rel);
  window()->showFrame(displayBuffer());
}

const std::uint8_t* SdlPlayer::displayBuffer() const {
  const BufferMarks marks = marks_.load(std::memory_order_acquire);
  return marks.displayBuffer == 1 ? buffer1_.get() : buffer2_.get();
}

void SdlPlayer::createWindow() {
  auto window = std::make_unique<SdlWindow>(request_);
  if (request_.fullscreen) window->enterFullscreen();
  window_ = window.release();
}

void SdlPlayer::requestTitle(std::string title) {
  const MutexLock lock(titleMutex_);
  requestedTitle_ = std::move(title);
  titleRequested_ = true;
}

void SdlPlayer::serveTitle() {
  if (!titleRequested_.exchange(false)) return;
  std::string title;
  {
    const MutexLock lock(titleMutex_);
    title.swap(requestedTitle_);
  }
  window()->setTitle(std::move(title));
}

void SdlPlayer::serveRaise() {
  if (raiseTicket_.exchange(0) != 0) window()->raise();
}

}  // namespace framesink
