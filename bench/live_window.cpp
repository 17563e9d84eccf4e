#include "live_window.hpp"

#include <stdexcept>

#include "support/x_client.hpp"

namespace framesink::bench {
namespace {

InputDescription describe(FrameSize size, FramesinkDataType dataType) {
  InputDescription input{};
  input.valid = 1;
  input.inputCount = 3;
  input.componentCount = 3;
  for (std::size_t i = 0; i < 3; ++i) {
    input.widths[i] = static_cast<std::uint32_t>(size.width);
    input.heights[i] = static_cast<std::uint32_t>(size.height);
  }
  input.dataType = dataType;
  input.layout = 1;
  return input;
}

void* createBlock(const std::string& name, const InputDescription& input,
                  const WindowPlace& place) {
  const auto [x, y, width, height] = place.geometry;
  char error[FRAMESINK_ERROR_BYTES] = "";
  void* const block =
      libCreate(error, 0, name.c_str(), name.c_str(), place.fullscreen, &input, 1,
                static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), width != 0,
                static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), 0, 0, 0);
  if (block == nullptr) throw std::runtime_error(std::string("libCreate: ") + error);
  return block;
}

}  // namespace

LiveWindow::LiveWindow(const std::string& name, FrameSize size, FramesinkDataType dataType,
                       const WindowPlace& place)
    : name_(name), block_(createBlock(name, describe(size, dataType), place)) {
  char error[FRAMESINK_ERROR_BYTES] = "";
  libStart(block_, error);
  test::XClient().waitForWindow(name_);
}

LiveWindow::~LiveWindow() {
  libTerminate(block_);
  libDestroy(block_);
  destroyVideoWindow(name_.c_str());
  test::XClient().waitForNoWindow(name_);
}

void LiveWindow::update(const ColumnMajorFrame& frame) {
  char error[FRAMESINK_ERROR_BYTES];
  libUpdate(block_, error, frame.plane(0), frame.plane(1), frame.plane(2),
            FRAMESINK_CONFIGURED_SIZE, FRAMESINK_CONFIGURED_SIZE);
}

}  // namespace framesink::bench
