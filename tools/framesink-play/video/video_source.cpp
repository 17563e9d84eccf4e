#include "video/video_source.hpp"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/common.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>

#include "sources/input_file.hpp"
#include "system/failure.hpp"
#include "system/signals.hpp"
#include "video/ffmpeg_log.hpp"
#include "video/picture_scaler.hpp"

namespace framesink::play {
namespace {

constexpr double kUnknownInterval = 1.0 / 25;  // seconds
constexpr double kLongestInterval = 60;        // a longer step in time is a break in the stream
constexpr double kTimeGrain = 1e-6;            // seconds
constexpr int kMostFirstNumber = 100'000;      // of a sequence of images

struct Free {
  void operator()(AVFormatContext* format) const { avformat_close_input(&format); }
  void operator()(AVCodecContext* decoder) const { avcodec_free_context(&decoder); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

template <class Thing>
using Owned = std::unique_ptr<Thing, Free>;

std::string messageOf(int error) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(error, text.data(), text.size());
  return text.data();
}

// What opening a file can come to. All other numbers, whatever they stand for elsewhere, are about
// what is in it.
bool isOfTheSystem(int error) {
  constexpr std::array kOfTheSystem{EACCES, EBADF,  ELOOP,   EMFILE, ENAMETOOLONG, ENFILE,
                                    ENOENT, ENOMEM, ENOTDIR, ENXIO,  EPERM};
  return std::ranges::find(kOfTheSystem, AVUNERROR(error)) != kOfTheSystem.end();
}

// Names of files that exist are no patterns.
bool isSequence(const std::string& path) {
  std::error_code ignored;
  return av_filename_number_test(path.c_str()) != 0 && !std::filesystem::exists(path, ignored);
}

class VideoSource final : public PictureSource {
 public:
  VideoSource(const std::string& path, double begin) : path_(path) {
    const ErrorWatch watch(errorLogged_);
    if (!frame_ || !packet_) throw std::bad_alloc();
    open();
    width_ = frame_->width;
    height_ = frame_->height;
    if (begin > 0) seek(begin);
  }

  // The first frame was decoded on opening.
  bool advance() override {
    if (frames_++ == 0) return true;
    const ErrorWatch watch(errorLogged_);
    if (!decode()) return false;
    keepTime();
    return true;
  }

  int width() const override { return width_; }
  int height() const override { return height_; }
  double time() const override { return time_; }

  double interval() const override {
    const double rate = av_q2d(av_guess_frame_rate(format_.get(), stream_, nullptr));
    return rate > 0 && rate <= 1000 ? 1 / rate : kUnknownInterval;
  }

  Picture picture(Kind kind, bool deep) override {
    const ErrorWatch watch(errorLogged_);
    const AVPixFmtDescriptor* pixels =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame_->format));
    const bool wide = pixels != nullptr && pixels->comp[0].depth > 8;
    try {
      return scaler_.scale(*frame_, kind, deep && wide, sentWidth(kind, width_), height_);
    } catch (const Failure& failure) {
      fail(failure.what());
    }
  }

  std::string trouble() const override {
    if (!damaged_ && !errorLogged_) return "";
    return nameOf(path_) + ": damaged or cut short, not all of it could be read";
  }

 private:
  [[noreturn]] void fail(const std::string& what) const { failFor(path_, what); }

  // Comes to the first picture.
  void open() {
    drained_ = false;
    decoder_.reset();
    format_.reset();
    openFile();
    openDecoder();
    if (!decode()) fail("no picture could be read from it");
    start_ = frame_->best_effort_timestamp;
  }

  // Moves on to the picture that is due `seconds` after the first one, which is due at 0 from then
  // on. What is left out is not looked at for damage.
  void seek(double seconds) {
    if (!jump(seconds)) open();
    double place = placeOf(0);
    while (place < seconds - kTimeGrain) {
      if (!decode()) fail("ends before the place that --seek asks for");
      place = placeOf(place + interval());
    }
    start_ = frame_->best_effort_timestamp;
    damaged_ = false;
    errorLogged_ = false;
  }

  // To a picture at or before `seconds`, from which others can be decoded. False, with the stream
  // anywhere, when the file has no way to find it. Pipes stay where they are.
  bool jump(double seconds) {
    const bool pipe = format_->pb != nullptr && (format_->pb->seekable & AVIO_SEEKABLE_NORMAL) == 0;
    if (pipe || start_ == AV_NOPTS_VALUE) return true;
    const auto ticks = static_cast<std::int64_t>(seconds / av_q2d(stream_->time_base));
    const std::int64_t stamp = av_sat_add64(start_, ticks);
    if (av_seek_frame(format_.get(), stream_->index, stamp, AVSEEK_FLAG_BACKWARD) < 0) return false;
    avcodec_flush_buffers(decoder_.get());
    drained_ = false;
    return decode() && placeOf(0) <= seconds + kTimeGrain;
  }

  // Where the current picture is in the stream, seconds after the first one; `otherwise` when it
  // does not tell.
  double placeOf(double otherwise) const {
    const std::int64_t stamp = frame_->best_effort_timestamp;
    if (stamp == AV_NOPTS_VALUE || start_ == AV_NOPTS_VALUE) return otherwise;
    return (static_cast<double>(stamp) - static_cast<double>(start_)) * av_q2d(stream_->time_base);
  }

  void openFile() {
    refuseFolder(path_);
    AVFormatContext* format = avformat_alloc_context();
    if (format == nullptr) throw std::bad_alloc();
    format->interrupt_callback.callback = [](void*) { return stopSignal() != 0 ? 1 : 0; };
    // Play lists are not to reach beyond this machine's files.
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file,pipe", 0);
    const bool sequence = isSequence(path_);
    av_dict_set(&options, "pattern_type", sequence ? "sequence" : "none", 0);
    if (sequence) av_dict_set_int(&options, "start_number_range", kMostFirstNumber, 0);
    const std::string url = isStandardInput(path_) ? "pipe:0" : "file:" + path_;
    const int error = avformat_open_input(&format, url.c_str(), nullptr, &options);
    av_dict_free(&options);
    if (error == AVERROR_INVALIDDATA) fail("not a video or an image");
    if (isOfTheSystem(error)) fail(messageOf(error));
    if (error < 0 && isStandardInput(path_))
      fail("damaged, cut short, or not to be read from a pipe");
    if (error < 0) fail("damaged or cut short, nothing can be read");
    format_.reset(format);
  }

  void openDecoder() {
    if (avformat_find_stream_info(format_.get(), nullptr) < 0) fail("not a video or an image");
    const AVCodec* codec = nullptr;
    const int index = av_find_best_stream(format_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (index == AVERROR_DECODER_NOT_FOUND) fail("no decoder for its pictures");
    if (index < 0) fail("there is no picture in it");
    for (unsigned i = 0; i < format_->nb_streams; ++i) {
      if (static_cast<int>(i) != index) format_->streams[i]->discard = AVDISCARD_ALL;
    }
    stream_ = format_->streams[index];
    decoder_.reset(avcodec_alloc_context3(codec));
    if (!decoder_) throw std::bad_alloc();
    flagErrorsOf(*decoder_, errorLogged_);
    decoder_->thread_count = 0;
    decoder_->max_pixels = kMostFramePixels;
    decoder_->pkt_timebase = stream_->time_base;
    int error = avcodec_parameters_to_context(decoder_.get(), stream_->codecpar);
    if (error >= 0) error = avcodec_open2(decoder_.get(), codec, nullptr);
    if (error < 0) fail("its decoder cannot start: " + messageOf(error));
  }

  // Makes frame_ the next picture; false when there is no more.
  bool decode() {
    while (stopSignal() == 0) {
      const int result = avcodec_receive_frame(decoder_.get(), frame_.get());
      if (result == 0) {
        if ((frame_->flags & AV_FRAME_FLAG_CORRUPT) != 0 || frame_->decode_error_flags != 0) {
          damaged_ = true;
        }
        return true;
      }
      if (result != AVERROR(EAGAIN) && result != AVERROR_EOF) damaged_ = true;
      if (result == AVERROR_EOF || drained_) return false;
      feed();
    }
    return false;
  }

  // Gives the decoder the stream's next packet, or the end.
  void feed() {
    int error = 0;
    do {
      av_packet_unref(packet_.get());
      error = av_read_frame(format_.get(), packet_.get());
    } while (error >= 0 && packet_->stream_index != stream_->index);
    if (error < 0) {
      damaged_ |= error != AVERROR_EOF || endsTooEarly();
      drained_ = true;
      avcodec_send_packet(decoder_.get(), nullptr);
      return;
    }
    packetsEnd_ = packet_->pos + packet_->size;
    damaged_ |= (packet_->flags & AV_PKT_FLAG_CORRUPT) != 0;
    damaged_ |= avcodec_send_packet(decoder_.get(), packet_.get()) < 0;
    av_packet_unref(packet_.get());
  }

  // FFmpeg ends two kinds of streams without a word when they are cut. What is left behind the last
  // picture tells: nothing in a whole y4m, and in a GIF a semicolon, perhaps before or after more.
  bool endsTooEarly() const {
    AVIOContext* file = format_->pb;
    const std::string_view kind = format_->iformat->name;
    const std::int64_t left = avio_tell(file) - packetsEnd_;
    if (kind == "yuv4mpegpipe") return left != 0;
    if (kind != "gif") return false;
    if (left == 0 || avio_seek(file, packetsEnd_, SEEK_SET) < 0) return true;
    const int first = avio_r8(file);
    int last = first;
    for (std::int64_t i = 1; i < left; ++i) last = avio_r8(file);
    return first != ';' && last != ';';
  }

  // Follows the stream's timestamps as long as they make sense.
  void keepTime() {
    const std::int64_t stamp = frame_->best_effort_timestamp;
    const double before = time_;
    const bool stamped = stamp != AV_NOPTS_VALUE && start_ != AV_NOPTS_VALUE;
    const double told = stamped ? (static_cast<double>(stamp) - static_cast<double>(start_)) *
                                          av_q2d(stream_->time_base) +
                                      shift_
                                : before;
    const bool sensible = told > before && told <= before + kLongestInterval;
    time_ = sensible ? told : before + interval();
    if (!sensible && stamped) shift_ += time_ - told;
  }

  std::string path_;
  ErrorFlag errorLogged_{false};  // outlives the decoder's threads
  Owned<AVFormatContext> format_;
  Owned<AVCodecContext> decoder_;
  Owned<AVFrame> frame_{av_frame_alloc()};
  Owned<AVPacket> packet_{av_packet_alloc()};
  AVStream* stream_ = nullptr;  // belongs to format_
  PictureScaler scaler_;
  int width_ = 0;
  int height_ = 0;
  std::int64_t frames_ = 0;
  std::int64_t start_ = AV_NOPTS_VALUE;  // the first frame's timestamp
  double time_ = 0;                      // seconds
  double shift_ = 0;                     // seconds that broken timestamps are off
  std::int64_t packetsEnd_ = 0;          // in bytes of the file
  bool drained_ = false;
  bool damaged_ = false;
};

}  // namespace

std::unique_ptr<Source> makeVideoSource(const std::string& path, double begin) {
  return std::make_unique<VideoSource>(path, begin);
}

}  // namespace framesink::play
