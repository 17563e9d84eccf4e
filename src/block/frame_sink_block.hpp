// One display block of the host: converts each frame to 8-bit red, green and blue planes and hands
// it to the player that is registered under the block's name.
#pragma once

#include <array>
#include <cstdint>

#include "block/pk_output_converter.hpp"
#include "convert/kernel_selection.hpp"
#include "display/geometry.hpp"
#include "display/player_id.hpp"
#include "display/window_request.hpp"

namespace framesink {

// What libCreate receives.
struct BlockSettings {
  std::uint64_t hostContext = 0;  // kept for the host; nothing reads it
  WindowSetup setup;
  std::uint32_t inputConversion = 0;
  bool allocatePlaneBuffers = false;
};

// Host thread only. The window and its record belong to the registry and outlive the block.
class FrameSinkBlock final : public PKOutputConverter {
 public:
  // A null description counts as all zeros. Throws std::bad_alloc.
  FrameSinkBlock(BlockSettings settings, const InputDescription* input);

  // Chooses the kernel and sets up the window. Throws a constant text (const char*) if the data
  // type is not supported, std::bad_alloc if memory runs out.
  void start();

  // Called by libStart. Does nothing, because start() does all set-up.
  void startHook() {}

  // Handles one frame. The comment of libUpdate lists sizes and dropped frames.
  void update(const void* plane1, const void* plane2, const void* plane3, std::uint32_t width,
              std::uint32_t height);

  // Converts a frame of the configured size and delivers it.
  void outputFrame(const void* plane1, const void* plane2, const void* plane3) override;

  std::int32_t inputKind() const;

 private:
  using Planes = std::array<const void*, 3>;

  Size frameSize() const { return settings_.setup.window.frameSize; }
  bool isPlaneNeeded(std::size_t plane) const;
  void splitPlanes(Planes& planes, Size size) const;
  bool centre(Planes& planes, Size size) const;
  bool convert(Planes& planes) const;
  bool areNeededPlanesPresent(const Planes& planes) const;
  void deliver(PlayerId playerId, const std::uint8_t* frame) const;

  const BlockSettings settings_;
  ConversionKernel conversionKernel_ = nullptr;  // chosen by start
};

}  // namespace framesink
