// Errors that FFmpeg logs, told to the source that they are about: some damage is told there only.
#pragma once

#include <atomic>

struct AVCodecContext;

namespace framesink::play {

// Set by FFmpeg's log, on any thread. Outlives the decoder that it is given to.
using ErrorFlag = std::atomic<bool>;

// From now on errors about this decoder set `flag`, whichever of FFmpeg's threads finds them. To be
// called before the decoder is opened.
void flagErrorsOf(AVCodecContext& decoder, ErrorFlag& flag);

// While it lives, `flag` takes the errors that are about no such decoder: about files, formats and
// pictures. The main thread's, and one at a time; stands in every function that calls FFmpeg.
class ErrorWatch {
 public:
  explicit ErrorWatch(ErrorFlag& flag);
  ~ErrorWatch();
  ErrorWatch(const ErrorWatch&) = delete;
  ErrorWatch& operator=(const ErrorWatch&) = delete;
};

}  // namespace framesink::play
