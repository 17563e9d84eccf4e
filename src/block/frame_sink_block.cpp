#include "block/frame_sink_block.hpp"

#include <utility>

#include "block/centring.hpp"
#include "convert/sample_types.hpp"
#include "display/server_instances.hpp"
#include "display/video_window_registry.hpp"

namespace framesink {
namespace {

PlaneSize planeSize(Size size) {
  return {static_cast<std::int32_t>(size.width), static_cast<std::int32_t>(size.height)};
}

}  // namespace

FrameSinkBlock::FrameSinkBlock(BlockSettings settings, const InputDescription* input)
    : PKOutputConverter(0, false, nullptr, settings.inputConversion, settings.allocatePlaneBuffers,
                        input),
      settings_(std::move(settings)) {}

// One buffer with one component is intensity, whatever its four-character code.
std::int32_t FrameSinkBlock::inputKind() const {
  if (input().inputCount == 1 && input().componentCount == 1) return kInputIntensity;
  return isInputYuy2() ? kInputYcbcr422 : kInputRgb;
}

void FrameSinkBlock::start() {
  if (input().dataType >= kDataTypeCount) throw "Unsupported video data type";
  conversionKernel_ = selectConversionKernel(inputKind(), kOutputRgbPlanes, input().dataType);
  videoWindowRegistry().setupVideoWindow(settings_.setup);
}

void FrameSinkBlock::update(const void* plane1, const void* plane2, const void* plane3,
                            std::uint32_t width, std::uint32_t height) {
  if (!isInputValid()) return;
  const Size size{width == FRAMESINK_CONFIGURED_SIZE ? frameSize().width : width,
                  height == FRAMESINK_CONFIGURED_SIZE ? frameSize().height : height};
  Planes planes{plane1, plane2, plane3};
  splitPlanes(planes, size);
  // The library's own decision: centring comes before the input conversion. It moves samples of the
  // description's type although the planes may still hold doubles.
  const bool complete = areNeededPlanesPresent(planes) &&
                        (size == frameSize() || centre(planes, size)) &&
                        (inputConversion() == nullptr || convert(planes));
  if (complete) {
    outputFrame(planes[0], planes[1], planes[2]);
  } else {
    deliver(kNoPlayer, nullptr);
  }
}

// One buffer with three components holds the planes one after another.
void FrameSinkBlock::splitPlanes(Planes& planes, Size size) const {
  if (input().inputCount != 1 || input().componentCount != 3 || planes[0] == nullptr) return;
  const std::uint32_t samples = size.width * size.height;
  const std::size_t bytesPerSample =
      inputConversion() != nullptr ? sizeof(double) : sampleBytes(input().dataType);
  const auto* first = static_cast<const std::byte*>(planes[0]);
  planes[1] = first + bytesPerSample * samples;
  planes[2] = first + 2 * bytesPerSample * samples;
}

bool FrameSinkBlock::isPlaneNeeded(std::size_t plane) const {
  return plane == 0 || inputKind() != kInputIntensity;
}

bool FrameSinkBlock::areNeededPlanesPresent(const Planes& planes) const {
  for (std::size_t i = 0; i < planes.size(); ++i) {
    if (planes[i] == nullptr && isPlaneNeeded(i)) return false;
  }
  return true;
}

// A plane that has no scratch plane is not centred. False if such a plane is needed.
bool FrameSinkBlock::centre(Planes& planes, Size size) const {
  if (!fitsWhenCentred(planeSize(size), planeSize(frameSize()))) return false;
  for (std::size_t i = 0; i < planes.size(); ++i) {
    if (planes[i] == nullptr) continue;
    if (planeBuffer(i) == nullptr) {
      if (isPlaneNeeded(i)) return false;
      continue;
    }
    centreIntoFrame(input().dataType, planes[i], planeSize(size), planeBuffer(i),
                    planeSize(frameSize()));
    planes[i] = planeBuffer(i);
  }
  return true;
}

bool FrameSinkBlock::convert(Planes& planes) const {
  for (std::size_t i = 0; i < planes.size(); ++i) {
    if (planes[i] == nullptr) continue;
    if (planeBuffer(i) == nullptr) {
      if (isPlaneNeeded(i)) return false;
      continue;
    }
    inputConversion()(static_cast<const double*>(planes[i]), planeBuffer(i),
                      std::size_t{input().widths[i]} * input().heights[i]);
    planes[i] = planeBuffer(i);
  }
  return true;
}

// Drops the frame if there is no record, or if another block has set the record up for another
// frame size, because then there is no buffer to convert into.
void FrameSinkBlock::outputFrame(const void* plane1, const void* plane2, const void* plane3) {
  const VideoWindow* window = videoWindowRegistry().findVideoWindow(settings_.setup.name);
  if (window == nullptr || window->frameSize() != frameSize()) {
    deliver(kNoPlayer, nullptr);
    return;
  }
  std::uint8_t* target = window->frameBuffer.get();
  conversionKernel_(plane1, plane2, plane3, target, static_cast<std::int32_t>(frameSize().width),
                    static_cast<std::int32_t>(frameSize().height), input().layout);
  deliver(window->playerId, target);
}

// Also called without a frame, because a synchronous server drains its events even then.
void FrameSinkBlock::deliver(PlayerId playerId, const std::uint8_t* frame) const {
  SdlServer* server = existingServer(settings_.setup.synchronous);
  if (server != nullptr) server->deliverFrame(playerId, frame, frameSize());
}

}  // namespace framesink
