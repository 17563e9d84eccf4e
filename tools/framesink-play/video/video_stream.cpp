#include "video/video_stream.hpp"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/common.h>
}

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <new>
#include <string_view>
#include <utility>

#include "frames/picture.hpp"
#include "sources/input_file.hpp"
#include "system/signals.hpp"
#include "video/gif_trailer.hpp"

namespace framesink::play {
namespace {

constexpr double kUnknownInterval = 1.0 / 25;  // seconds
constexpr double kMostRate = 1000;             // frames per second that a file is believed
constexpr int kMostFirstNumber = 100'000;      // of a sequence of images
constexpr int kMostFailuresAtEnd = 100;        // more pictures than any decoder holds back

std::string messageOf(int error) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(error, text.data(), text.size());
  return text.data();
}

// True for errors of the operating system on opening a file. FFmpeg's other errors are about the
// file's content, even those that have numbers of the operating system.
bool isSystemError(int error) {
  constexpr std::array kSystemErrors{EACCES, EBADF,  ELOOP,   EMFILE, ENAMETOOLONG, ENFILE,
                                     ENOENT, ENOMEM, ENOTDIR, ENXIO,  EPERM};
  return std::ranges::find(kSystemErrors, AVUNERROR(error)) != kSystemErrors.end();
}

// The name of an existing file is not a pattern.
bool isSequence(const std::string& path) {
  std::error_code ignored;
  return av_filename_number_test(path.c_str()) != 0 && !std::filesystem::exists(path, ignored);
}

std::optional<std::int64_t> stampOf(const AVFrame& frame) {
  if (frame.best_effort_timestamp == AV_NOPTS_VALUE) return std::nullopt;
  return frame.best_effort_timestamp;
}

AVDictionary* openingOptions(const std::string& path) {
  AVDictionary* options = nullptr;
  // A play list must not make the player read from a network.
  av_dict_set(&options, "protocol_whitelist", "file,pipe", 0);
  const bool sequence = isSequence(path);
  av_dict_set(&options, "pattern_type", sequence ? "sequence" : "none", 0);
  if (sequence) av_dict_set_int(&options, "start_number_range", kMostFirstNumber, 0);
  return options;
}

}  // namespace

void VideoStream::Free::operator()(AVFormatContext* format) const { avformat_close_input(&format); }
void VideoStream::Free::operator()(AVCodecContext* decoder) const {
  avcodec_free_context(&decoder);
}
void VideoStream::Free::operator()(AVFrame* frame) const { av_frame_free(&frame); }
void VideoStream::Free::operator()(AVPacket* packet) const { av_packet_free(&packet); }

VideoStream::VideoStream(std::string path, ErrorFlag& errorLogged)
    : path_(std::move(path)),
      errorLogged_(errorLogged),
      frame_(av_frame_alloc()),
      packet_(av_packet_alloc()),
      incoming_(av_packet_alloc()) {
  if (!frame_ || !packet_ || !incoming_) throw std::bad_alloc();
}

void VideoStream::open() {
  drained_ = false;
  decoder_.reset();
  format_.reset();
  openFile();
  selectStream();
  openDecoder();
  if (!decode()) fail("no picture could be read from it");
  startHere();
}

bool VideoStream::decode() {
  while (stopSignal() == 0) {
    const int result = avcodec_receive_frame(decoder_.get(), frame_.get());
    if (result == 0) {
      damaged_ |= (frame_->flags & AV_FRAME_FLAG_CORRUPT) != 0 || frame_->decode_error_flags != 0;
      return true;
    }
    damaged_ |= result != AVERROR(EAGAIN) && result != AVERROR_EOF;
    if (result == AVERROR_EOF) return false;
    if (!drained_) {
      feed();
    } else if (++failuresAtEnd_ > kMostFailuresAtEnd) {
      return false;
    }
  }
  return false;
}

bool VideoStream::jump(double seconds) {
  const bool pipe = format_->pb != nullptr && (format_->pb->seekable & AVIO_SEEKABLE_NORMAL) == 0;
  if (pipe || !start_) return true;
  const auto ticks = static_cast<std::int64_t>(seconds / av_q2d(stream_->time_base));
  const std::int64_t stamp = av_sat_add64(*start_, ticks);
  if (av_seek_frame(format_.get(), stream_->index, stamp, AVSEEK_FLAG_BACKWARD) < 0) return false;
  avcodec_flush_buffers(decoder_.get());
  drained_ = false;
  return decode() && place().value_or(0) <= seconds + kTimeGrain;
}

std::optional<double> VideoStream::place() const {
  const auto stamp = stampOf(*frame_);
  if (!stamp || !start_) return std::nullopt;
  return (static_cast<double>(*stamp) - static_cast<double>(*start_)) * av_q2d(stream_->time_base);
}

void VideoStream::startHere() { start_ = stampOf(*frame_); }

double VideoStream::interval() const {
  const double rate = av_q2d(av_guess_frame_rate(format_.get(), stream_, nullptr));
  return rate > 0 && rate <= kMostRate ? 1 / rate : kUnknownInterval;
}

void VideoStream::fail(const std::string& what) const { failFor(path_, what); }

void VideoStream::failToOpen(int error) const {
  if (error == AVERROR_INVALIDDATA) fail("not a video or an image");
  if (isSystemError(error)) fail(messageOf(error));
  if (isStandardInput(path_)) fail("damaged, cut short, or not readable from a pipe");
  fail("damaged or cut short, nothing can be read");
}

void VideoStream::openFile() {
  refuseFolder(path_);
  AVFormatContext* format = avformat_alloc_context();
  if (format == nullptr) throw std::bad_alloc();
  format->interrupt_callback.callback = [](void*) { return stopSignal() != 0 ? 1 : 0; };
  AVDictionary* options = openingOptions(path_);
  const std::string url = isStandardInput(path_) ? "pipe:0" : "file:" + path_;
  const int error = avformat_open_input(&format, url.c_str(), nullptr, &options);
  av_dict_free(&options);
  if (error < 0) failToOpen(error);
  format_.reset(format);
}

void VideoStream::selectStream() {
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
}

void VideoStream::openDecoder() {
  flagErrorsOf(*decoder_, errorLogged_);
  decoder_->thread_count = 0;
  decoder_->max_pixels = kMostFramePixels;
  decoder_->pkt_timebase = stream_->time_base;
  int error = avcodec_parameters_to_context(decoder_.get(), stream_->codecpar);
  if (error >= 0) error = avcodec_open2(decoder_.get(), decoder_->codec, nullptr);
  if (error < 0) fail("its decoder cannot start: " + messageOf(error));
}

// Gives the decoder the next packet of the stream, or its end.
void VideoStream::feed() {
  int error = 0;
  do {
    av_packet_unref(incoming_.get());
    error = av_read_frame(format_.get(), incoming_.get());
  } while (error >= 0 && incoming_->stream_index != stream_->index);
  if (error < 0) {
    damaged_ |= error != AVERROR_EOF || endsTooEarly();
    drained_ = true;
    failuresAtEnd_ = 0;
    avcodec_send_packet(decoder_.get(), nullptr);
    return;
  }
  av_packet_unref(packet_.get());
  av_packet_move_ref(packet_.get(), incoming_.get());
  damaged_ |= (packet_->flags & AV_PKT_FLAG_CORRUPT) != 0;
  damaged_ |= avcodec_send_packet(decoder_.get(), packet_.get()) < 0;
}

// FFmpeg reports no error when a y4m or a GIF is cut. A whole y4m has no bytes after the last packet.
bool VideoStream::endsTooEarly() const {
  const std::string_view kind = format_->iformat->name;
  if (kind == "yuv4mpegpipe") return avio_tell(format_->pb) != packet_->pos + packet_->size;
  return kind == "gif" && !isWholeGif();
}

// The trailer is in the last packet or after it, depending on FFmpeg's version.
bool VideoStream::isWholeGif() const {
  AVIOContext* file = format_->pb;
  const std::int64_t packetEnd = packet_->pos + packet_->size;
  const std::int64_t left = avio_tell(file) - packetEnd;
  const bool readable = left > 0 && avio_seek(file, packetEnd, SEEK_SET) >= 0;
  const std::int64_t count = packet_->size + (readable ? left : 0);
  std::int64_t place = 0;
  return endsWithGifTrailer([&]() -> int {
    if (place == count) return -1;
    const std::int64_t at = place++;
    return at < packet_->size ? packet_->data[at] : avio_r8(file);
  });
}

}  // namespace framesink::play
