// Assigns the errors that FFmpeg logs to the source that they are about. FFmpeg reports some damage
// in its log only.
#pragma once

#include <atomic>

struct AVCodecContext;

namespace framesink::play {

// Set when FFmpeg logs an error, on any thread. It must outlive the decoder that it is given to.
using ErrorFlag = std::atomic<bool>;

// Makes errors of this decoder set `flag`, on whichever of FFmpeg's threads they occur. Call it
// before you open the decoder.
void flagErrorsOf(AVCodecContext& decoder, ErrorFlag& flag);

// While it lives, errors of files, formats and pictures set `flag`, because they name no such
// decoder. Every function that calls FFmpeg holds one. Main thread only, one at a time.
class ErrorWatch {
 public:
  explicit ErrorWatch(ErrorFlag& flag);
  ~ErrorWatch();
  ErrorWatch(const ErrorWatch&) = delete;
  ErrorWatch& operator=(const ErrorWatch&) = delete;
};

}  // namespace framesink::play
