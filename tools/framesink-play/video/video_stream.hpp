// The pictures of a file's best video stream, decoded one by one with FFmpeg's libraries.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "video/ffmpeg_log.hpp"

struct AVCodecContext;
struct AVFormatContext;
struct AVFrame;
struct AVPacket;
struct AVStream;

namespace framesink::play {

// Two times that differ by less than this are the same.
inline constexpr double kTimeGrain = 1e-6;  // seconds

class VideoStream {
 public:
  // `path` is a file, a pattern of numbered images, or "-" for standard input. The decoder's errors
  // set `errorLogged`, which must outlive the stream.
  VideoStream(std::string path, ErrorFlag& errorLogged);

  // Opens the file, or opens it again, and decodes its first picture, which is due at 0. Throws
  // Failure.
  void open();

  // Decodes the next picture. Returns false after the last one.
  bool decode();

  // Decodes a picture at or before `seconds`, from which the following ones can be decoded. Returns
  // false, at an undefined place, if the file cannot be searched. A pipe keeps its place.
  bool jump(double seconds);

  const AVFrame& picture() const { return *frame_; }

  // The time at which the picture is due, in seconds; nothing if it has no timestamp.
  std::optional<double> place() const;

  // Makes the current picture the one that is due at 0.
  void startHere();

  // The usual time between two pictures, in seconds.
  double interval() const;

  // True if anything that was read or decoded is damaged.
  bool isDamaged() const { return damaged_; }
  void forgetDamage() { damaged_ = false; }

 private:
  struct Free {
    void operator()(AVFormatContext* format) const;
    void operator()(AVCodecContext* decoder) const;
    void operator()(AVFrame* frame) const;
    void operator()(AVPacket* packet) const;
  };
  template <class Thing>
  using Owned = std::unique_ptr<Thing, Free>;

  [[noreturn]] void fail(const std::string& what) const;
  [[noreturn]] void failToOpen(int error) const;
  void openFile();
  void selectStream();
  void openDecoder();
  void feed();
  bool endsTooEarly() const;
  bool isWholeGif() const;

  std::string path_;
  ErrorFlag& errorLogged_;
  Owned<AVFormatContext> format_;
  Owned<AVCodecContext> decoder_;
  Owned<AVFrame> frame_;
  Owned<AVPacket> packet_;             // the one that the decoder was given last
  Owned<AVPacket> incoming_;           // the one that is being read
  AVStream* stream_ = nullptr;         // belongs to format_
  std::optional<std::int64_t> start_;  // timestamp of the picture that is due at 0
  bool drained_ = false;               // the decoder has been given the end of the stream
  int failuresAtEnd_ = 0;              // pictures that the drained decoder failed to return
  bool damaged_ = false;
};

}  // namespace framesink::play
