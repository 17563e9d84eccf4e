#include "video/video_source.hpp"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
}

#include "sources/input_file.hpp"
#include "system/failure.hpp"
#include "video/ffmpeg_log.hpp"
#include "video/picture_scaler.hpp"
#include "video/video_stream.hpp"

namespace framesink::play {
namespace {

constexpr double kLongestInterval = 60;  // seconds; a longer one is a break in the timestamps

class VideoSource final : public PictureSource {
 public:
  VideoSource(const std::string& path, double begin) : path_(path), stream_(path, errorLogged_) {
    const ErrorWatch watch(errorLogged_);
    stream_.open();
    width_ = stream_.picture().width;
    height_ = stream_.picture().height;
    if (begin > 0) seek(begin);
  }

  // The constructor has decoded the first frame.
  bool advance() override {
    if (!begun_) {
      begun_ = true;
      return true;
    }
    const ErrorWatch watch(errorLogged_);
    if (!stream_.decode()) return false;
    keepTime();
    return true;
  }

  int width() const override { return width_; }
  int height() const override { return height_; }
  double time() const override { return time_; }
  double interval() const override { return stream_.interval(); }

  Picture picture(Kind kind, bool deep) override {
    const ErrorWatch watch(errorLogged_);
    const AVFrame& frame = stream_.picture();
    const AVPixFmtDescriptor* pixels =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const bool wide = pixels != nullptr && pixels->comp[0].depth > 8;
    try {
      return scaler_.scale(frame, kind, deep && wide, sentWidth(kind, width_), height_);
    } catch (const Failure& failure) {
      failFor(path_, failure.what());
    }
  }

  std::string trouble() const override {
    if (!stream_.isDamaged() && !errorLogged_) return "";
    return nameOf(path_) + ": damaged or cut short, not all of it could be read";
  }

 private:
  // Moves on to the frame that is due after `seconds`, and makes it due at 0. Damage in skipped
  // frames does not count.
  void seek(double seconds) {
    if (!stream_.jump(seconds)) stream_.open();
    double place = stream_.place().value_or(0);
    while (place < seconds - kTimeGrain) {
      if (!stream_.decode()) failFor(path_, "ends before the place that --seek asks for");
      place = stream_.place().value_or(place + interval());
    }
    stream_.startHere();
    stream_.forgetDamage();
    errorLogged_ = false;
  }

  // Follows the timestamps as long as they rise by no more than kLongestInterval. Where they do not,
  // one interval passes, and later timestamps are shifted to continue from there.
  void keepTime() {
    const double before = time_;
    const auto place = stream_.place();
    const double stamped = place ? *place + shift_ : before;
    const bool plausible = stamped > before && stamped <= before + kLongestInterval;
    time_ = plausible ? stamped : before + interval();
    if (!plausible && place) shift_ += time_ - stamped;
  }

  std::string path_;
  ErrorFlag errorLogged_{false};  // outlives the decoder's threads
  VideoStream stream_;
  PictureScaler scaler_;
  int width_ = 0;
  int height_ = 0;
  bool begun_ = false;  // advance has been called
  double time_ = 0;     // seconds
  double shift_ = 0;    // seconds to add to the stream's timestamps
};

}  // namespace

std::unique_ptr<Source> makeVideoSource(const std::string& path, double begin) {
  return std::make_unique<VideoSource>(path, begin);
}

}  // namespace framesink::play
