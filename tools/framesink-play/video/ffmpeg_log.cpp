#include "video/ffmpeg_log.hpp"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/log.h>
}

#include <cstdarg>
#include <mutex>

namespace framesink::play {
namespace {

std::mutex watchMutex;
ErrorFlag* watching = nullptr;  // behind watchMutex; null: no source calls FFmpeg now

void watch(ErrorFlag* flag) {
  const std::lock_guard lock(watchMutex);
  watching = flag;
}

// The flag of the decoder that logs; null for what is no decoder, or one of FFmpeg's own. Copies of
// a decoder that FFmpeg makes for its threads know the flag, too.
ErrorFlag* flagOf(const void* context) {
  if (context == nullptr) return nullptr;
  if (*static_cast<const AVClass* const*>(context) != avcodec_get_class()) return nullptr;
  return static_cast<ErrorFlag*>(static_cast<const AVCodecContext*>(context)->opaque);
}

void listen(void* context, int level, const char*, va_list) {
  if (level > AV_LOG_ERROR) return;
  if (ErrorFlag* flag = flagOf(context)) {
    *flag = true;
    return;
  }
  const std::lock_guard lock(watchMutex);
  if (watching != nullptr) *watching = true;
}

}  // namespace

void flagErrorsOf(AVCodecContext& decoder, ErrorFlag& flag) { decoder.opaque = &flag; }

ErrorWatch::ErrorWatch(ErrorFlag& flag) {
  [[maybe_unused]] static const bool listening = (av_log_set_callback(listen), true);
  watch(&flag);
}

ErrorWatch::~ErrorWatch() { watch(nullptr); }

}  // namespace framesink::play
