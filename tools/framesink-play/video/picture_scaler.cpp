#include "video/picture_scaler.hpp"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <array>
#include <string>

#include "system/failure.hpp"

namespace framesink::play {
namespace {

constexpr int kFlags = SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_BITEXACT;

// Picture formats by Kind, with 8 and with 16 bits per component.
constexpr std::array<std::array<AVPixelFormat, 2>, 3> kFormats{{
    {AV_PIX_FMT_RGB24, AV_PIX_FMT_RGB48},
    {AV_PIX_FMT_GRAY8, AV_PIX_FMT_GRAY16},
    {AV_PIX_FMT_YUV422P, AV_PIX_FMT_YUV422P16},
}};

// A J format is the format of the same name in full range.
AVPixelFormat plainFormat(int format) {
  switch (format) {
    case AV_PIX_FMT_YUVJ420P:
      return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P:
      return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ444P:
      return AV_PIX_FMT_YUV444P;
    case AV_PIX_FMT_YUVJ440P:
      return AV_PIX_FMT_YUV440P;
    case AV_PIX_FMT_YUVJ411P:
      return AV_PIX_FMT_YUV411P;
    default:
      return static_cast<AVPixelFormat>(format);
  }
}

// Grey has the full range unless the frame states another.
bool isFullRange(const AVFrame& frame) {
  if (frame.color_range != AVCOL_RANGE_UNSPECIFIED) return frame.color_range == AVCOL_RANGE_JPEG;
  const AVPixelFormat format = plainFormat(frame.format);
  const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(format);
  const bool grey = description != nullptr && description->nb_components < 3;
  return grey || format != frame.format;
}

void setOption(SwsContext* context, const char* name, int value) {
  if (av_opt_set_int(context, name, value, 0) < 0) {
    throw Failure(kSourceTrouble, std::string("swscale does not know ") + name);
  }
}

// Returns the code of 1.0. YCbCr codes of 16 bits are 256 times those of 8 bits; grey and RGB use all
// 16 bits.
double oneOf(Kind kind, bool deep) {
  if (!deep) return 255;
  return kind == Kind::kYcbcr422 ? 255 * 256 : 65535;
}

}  // namespace

void PictureScaler::Free::operator()(AVFrame* frame) const { av_frame_free(&frame); }
void PictureScaler::Free::operator()(SwsContext* context) const { sws_freeContext(context); }

Picture PictureScaler::scale(const AVFrame& frame, Kind kind, bool deep, int width, int height) {
  const bool cropped = frame.height == height && frame.width == width + 1;
  const AVPixelFormat format = kFormats[static_cast<std::size_t>(kind)][deep ? 1 : 0];
  prepare({cropped ? width : frame.width, frame.height, plainFormat(frame.format), frame.colorspace,
           isFullRange(frame), format, width, height},
          kind);
  sws_scale(context_.get(), frame.data, frame.linesize, 0, frame.height, result_->data,
            result_->linesize);
  return view(kind, deep);
}

void PictureScaler::prepare(const Setup& setup, Kind kind) {
  if (context_ && setup == setup_) return;
  const auto [fromWidth, fromHeight, fromFormat, colourSpace, fullRange, format, width, height] =
      setup;
  result_.reset(av_frame_alloc());
  context_.reset(sws_alloc_context());
  if (!result_ || !context_) throw std::bad_alloc();
  result_->format = format;
  result_->width = width;
  result_->height = height;
  if (av_frame_get_buffer(result_.get(), 0) < 0) throw std::bad_alloc();

  SwsContext* context = context_.get();
  const int toFullRange = kind == Kind::kYcbcr422 ? 0 : 1;
  setOption(context, "sws_flags", kFlags);
  setOption(context, "srcw", fromWidth);
  setOption(context, "srch", fromHeight);
  setOption(context, "src_format", fromFormat);
  setOption(context, "src_range", fullRange);
  setOption(context, "dstw", width);
  setOption(context, "dsth", height);
  setOption(context, "dst_format", format);
  setOption(context, "dst_range", toFullRange);
  if (sws_init_context(context, nullptr, nullptr) < 0) {
    context_.reset();
    throw Failure(kSourceTrouble, "its pixels are of a form that cannot be converted");
  }
  // Grey keeps the luma of the source. The call fails, without effect, if neither side is YCbCr.
  const int* from = sws_getCoefficients(colourSpace);
  const int* to = kind == Kind::kIntensity ? from : sws_getCoefficients(SWS_CS_ITU601);
  sws_setColorspaceDetails(context, from, fullRange, to, toFullRange, 0, 1 << 16, 1 << 16);
  setup_ = setup;
}

Picture PictureScaler::view(Kind kind, bool deep) const {
  const AVFrame& result = *result_;
  const int step = kind == Kind::kRgb ? 3 : 1;
  Picture picture;
  for (int i = 0; i < infoOf(kind).planeCount; ++i) {
    const int buffer = kind == Kind::kRgb ? 0 : i;
    const int offset = kind == Kind::kRgb ? i : 0;
    const int columns = planeWidth(kind, i, result.width);
    const auto grid = [&](auto* codes) {
      const auto rowStep = result.linesize[buffer] / static_cast<int>(sizeof *codes);
      return Grid<std::remove_cvref_t<decltype(*codes)>>{
          codes + offset, rowStep, step, columns, result.height, oneOf(kind, deep)};
    };
    if (deep) {
      picture.push_back(grid(reinterpret_cast<const std::uint16_t*>(result.data[buffer])));
    } else {
      picture.push_back(grid(static_cast<const std::uint8_t*>(result.data[buffer])));
    }
  }
  return picture;
}

}  // namespace framesink::play
