#include "video/ffmpeg_log.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace framesink::play {
namespace {

struct Free {
  void operator()(AVCodecContext* decoder) const { avcodec_free_context(&decoder); }
  void operator()(AVFormatContext* format) const { avformat_free_context(format); }
};

class FfmpegLog : public testing::Test {
 protected:
  FfmpegLog() { flagErrorsOf(*decoder_, one_); }

  ErrorFlag one_{false};
  ErrorFlag other_{false};
  const std::unique_ptr<AVCodecContext, Free> decoder_{avcodec_alloc_context3(nullptr)};
  const std::unique_ptr<AVCodecContext, Free> innerDecoder_{avcodec_alloc_context3(nullptr)};
  const std::unique_ptr<AVFormatContext, Free> format_{avformat_alloc_context()};
};

TEST_F(FfmpegLog, OfADecoderIsItsSourcesOnAnyThread) {
  const ErrorWatch watch(other_);
  std::thread([&] { av_log(decoder_.get(), AV_LOG_ERROR, "damaged"); }).join();
  EXPECT_TRUE(one_);
  EXPECT_FALSE(other_);
}

TEST_F(FfmpegLog, OfAllElseIsTheCallersSources) {
  for (void* context : {static_cast<void*>(nullptr), static_cast<void*>(innerDecoder_.get()),
                        static_cast<void*>(format_.get())}) {
    other_ = false;
    const ErrorWatch watch(other_);
    av_log(context, AV_LOG_ERROR, "damaged");
    EXPECT_TRUE(other_);
    EXPECT_FALSE(one_);
  }
}

TEST_F(FfmpegLog, OfAllElseIsNobodysOnceTheCallIsOver) {
  { const ErrorWatch watch(other_); }
  av_log(format_.get(), AV_LOG_ERROR, "damaged");
  EXPECT_FALSE(one_);
  EXPECT_FALSE(other_);
}

TEST_F(FfmpegLog, IsAboutErrorsAlone) {
  const ErrorWatch watch(other_);
  av_log(decoder_.get(), AV_LOG_WARNING, "strange");
  av_log(format_.get(), AV_LOG_WARNING, "strange");
  EXPECT_FALSE(one_);
  EXPECT_FALSE(other_);
}

}  // namespace
}  // namespace framesink::play
