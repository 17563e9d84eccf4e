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
ErrorFlag* watching = nullptr;  // guarded by watchMutex; null: no source is calling FFmpeg

void watch(ErrorFlag* flag) {
  const std::lock_guard lock(watchMutex);
  watching = flag;
}

// Returns the flag of the decoder that logs. The copies of a decoder that FFmpeg makes for its
// threads have the same flag. Returns null for anything but a decoder, and for decoders that FFmpeg
// uses internally.
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
