// What the host calls: thin shells around the block and the registry.
#include <algorithm>
#include <memory>
#include <new>
#include <string>

#include "block/error_text.hpp"
#include "block/frame_sink_block.hpp"
#include "block/pending_error.hpp"
#include "display/video_window_registry.hpp"
#include "framesink/framesink.h"
#include "process/host_calls.hpp"

namespace {

using framesink::FrameSinkBlock;
using framesink::HostCall;
using framesink::VideoWindow;
using framesink::videoWindowRegistry;

std::string text(const char* hostText) { return hostText == nullptr ? "" : hostText; }

framesink::Size frameSizeOf(const InputDescription* description) {
  if (description == nullptr) return {};
  return {description->widths[0], description->heights[0]};
}

void reportPendingError(char* errorMessage) {
  if (framesink::isErrorPending()) {
    framesink::reportError(errorMessage, framesink::takePendingError());
  }
}

// The window-control exports have no error buffer, so they do nothing if memory runs out.
template <class Action>
void controlWindows(Action action) {
  const HostCall call;
  if (!call) return;
  try {
    action(videoWindowRegistry());
  } catch (const std::bad_alloc&) {
  }
}

}  // namespace

extern "C" {

void* libCreate(char* errorMessage, uint64_t hostContext, const char* playerName,
                const char* windowTitle, uint8_t fullscreen, const InputDescription* description,
                uint8_t openAtStart, uint32_t windowX, uint32_t windowY, uint8_t useWindowSize,
                uint32_t windowWidth, uint32_t windowHeight, uint32_t inputConversion,
                uint8_t allocatePlaneBuffers, uint8_t synchronous) {
  const HostCall call;
  if (!call) return nullptr;
  auto block = std::make_unique<FrameSinkBlock>(
      framesink::BlockSettings{
          .hostContext = hostContext,
          .setup = {.name = text(playerName),
                    .window = {.title = text(windowTitle),
                               .frameSize = frameSizeOf(description),
                               .geometry = {{windowX, windowY}, {windowWidth, windowHeight}},
                               .useWindowSize = useWindowSize != 0,
                               .fullscreen = fullscreen != 0},
                    .openNow = openAtStart != 0,
                    .synchronous = synchronous != 0},
          .inputConversion = inputConversion,
          .allocatePlaneBuffers = allocatePlaneBuffers != 0},
      description);
  try {
    block->start();
  } catch (const char* message) {
    block.reset();
    framesink::reportError(errorMessage, message);
    return nullptr;
  }
  reportPendingError(errorMessage);
  return block.release();
}

void libStart(void* block, char* errorMessage) {
  const HostCall call;
  if (block != nullptr) static_cast<FrameSinkBlock*>(block)->startHook();
  reportPendingError(errorMessage);
}

void libUpdate(void* block, char* errorMessage, const void* plane1, const void* plane2,
               const void* plane3, uint32_t width, uint32_t height) {
  const HostCall call;
  if (!call || block == nullptr) return;
  static_cast<FrameSinkBlock*>(block)->update(plane1, plane2, plane3, width, height);
  reportPendingError(errorMessage);
}

void libOutputs(void*) {}

// The window stays open after a run, deliberately.
void libTerminate(void*) {}

void libDestroy(void* block) {
  const HostCall call;
  delete static_cast<FrameSinkBlock*>(block);
}

void createVideoWindow(const char* name, uint8_t fullscreen, const uint32_t* position,
                       const uint32_t* size, uint8_t useWindowSize) {
  if (position == nullptr || size == nullptr) return;
  controlWindows([&](auto& registry) {
    VideoWindow* window = registry.findVideoWindow(text(name));
    if (window == nullptr) return;
    registry.openVideoWindow(*window, {.frameSize = window->frameSize(),
                                       .geometry = {{position[0], position[1]}, {size[0], size[1]}},
                                       .useWindowSize = useWindowSize != 0,
                                       .fullscreen = fullscreen != 0});
  });
}

void destroyVideoWindow(const char* name) {
  controlWindows([&](auto& registry) { registry.closeVideoWindow(text(name)); });
}

void getWindowPosSize(const char* name, int32_t* position, int32_t* size) {
  controlWindows([&](auto& registry) {
    const VideoWindow* window = registry.findVideoWindow(text(name));
    if (window == nullptr) return;
    int32_t pair[4];
    registry.getVideoWindowPosSize(*window, pair, pair + 2);
    if (position != nullptr) std::copy_n(pair, 2, position);
    if (size != nullptr) std::copy_n(pair + 2, 2, size);
  });
}

uint8_t isPlayerOpen(const char* name) {
  bool open = false;
  controlWindows([&](auto& registry) {
    const VideoWindow* window = registry.findVideoWindow(text(name));
    open = window != nullptr && registry.isVideoWindowOpen(*window);
  });
  return open;
}

void renameVideoWindow(const char* name, const char* newName, const char* newTitle) {
  controlWindows([&](auto& registry) {
    registry.renameVideoWindowCore(text(name), text(newName), text(newTitle));
  });
}

// The compiler formats __DATE__ and takes it from SOURCE_DATE_EPOCH if that is set.
const char* const framesink_version = FRAMESINK_VERSION;
const char* const framesink_build_date = __DATE__;
const char* const framesink_relative_path = "bin\\win64\\framesink.dll";
}

namespace {

// The functions of a block's life, in the order of their calls. Nothing in the library reads the
// table; it is kept for tools that look for it in the library's writable data.
using EntryPoint = void (*)();
[[gnu::used]] EntryPoint lifecycleEntryPoints[] = {
    reinterpret_cast<EntryPoint>(libCreate),    reinterpret_cast<EntryPoint>(libStart),
    reinterpret_cast<EntryPoint>(libUpdate),    reinterpret_cast<EntryPoint>(libOutputs),
    reinterpret_cast<EntryPoint>(libTerminate), reinterpret_cast<EntryPoint>(libDestroy)};

}  // namespace
