#include "display/video_window_registry.hpp"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "display/host_calls.hpp"
#include "display/server_instances.hpp"

namespace framesink {
namespace {

char normalisedCharacter(char c) { return c == '\n' ? ' ' : c; }

std::string normalised(std::string_view text) {
  std::string copy(text);
  std::replace(copy.begin(), copy.end(), '\n', ' ');
  return copy;
}

bool isNamed(const VideoWindow& window, std::string_view name) {
  return std::equal(window.name.begin(), window.name.end(), name.begin(), name.end(),
                    [](char own, char sought) { return own == normalisedCharacter(sought); });
}

// The server that has the record's player, open and not closing; null when none has.
SdlServer* serverWithOpenPlayer(bool synchronous, const VideoWindow& window) {
  SdlServer* server = existingServer(synchronous);
  const auto playerId = static_cast<std::uint32_t>(window.playerId);
  return server != nullptr && server->hasOpenPlayer(playerId) ? server : nullptr;
}

SdlServer* serverWithOpenPlayer(const VideoWindow& window) {
  return serverWithOpenPlayer(window.synchronous != 0, window);
}

// What an open window and a new set-up of its name come to.
struct Refresh {
  bool keep;
  Position position;
  Size windowSize;
};

Refresh refreshOf(SdlServer& server, const VideoWindow& window, const WindowSetup& setup,
                  Size requestedSize) {
  const auto playerId = static_cast<std::uint32_t>(window.playerId);
  const bool wantsFrameSize = setup.fullscreen == 0 && setup.useWindowSize == 0;
  const bool isFullscreen = server.isPlayerFullscreen(playerId);
  Refresh refresh{.keep = false, .position = setup.position, .windowSize = requestedSize};
  Size currentSize;
  if (!isFullscreen) {
    if (const auto current = server.windowGeometry(playerId)) {
      currentSize = current->size;
      refresh.position = current->position;
      if (!wantsFrameSize) refresh.windowSize = current->size;
    }
  }
  const Size shownSize{static_cast<std::uint32_t>(server.getFrameWidth(playerId)),
                       static_cast<std::uint32_t>(server.getFrameHeight(playerId))};
  const bool sizeFits =
      setup.fullscreen != 0 || setup.useWindowSize != 0 || currentSize == setup.frameSize;
  refresh.keep = shownSize == setup.frameSize && (setup.fullscreen != 0) == isFullscreen &&
                 (setup.synchronous != 0) == (window.synchronous != 0) && sizeFits;
  return refresh;
}

}  // namespace

VideoWindowRegistry::VideoWindowRegistry() : windows_(new Windows) {}

// Records that a host call may still be using are left to the end of the process.
VideoWindowRegistry::~VideoWindowRegistry() {
  if (endHostCalls()) delete windows_;
}

VideoWindow* VideoWindowRegistry::findVideoWindow(std::string_view name) const {
  for (const auto& window : *windows_) {
    if (isNamed(*window, name)) return window.get();
  }
  return nullptr;
}

VideoWindow* VideoWindowRegistry::registerVideoWindow(std::string_view name, Size frameSize,
                                                      std::uint8_t synchronous) {
  auto window = std::make_unique<VideoWindow>();
  window->name = normalised(name);
  window->synchronous = synchronous;
  window->frameBuffer = std::make_unique<std::uint8_t[]>(frameByteCount(frameSize));
  window->frameWidth = frameSize.width;
  window->frameHeight = frameSize.height;
  return windows_->insert(std::move(window)).first->get();
}

void VideoWindowRegistry::unregisterVideoWindow(std::string_view name) {
  forget(findVideoWindow(name));
}

void VideoWindowRegistry::forget(const VideoWindow* window) {
  std::erase_if(*windows_, [&](const auto& owned) { return owned.get() == window; });
}

void VideoWindowRegistry::setupVideoWindow(const WindowSetup& setup) {
  const bool wantsFrameSize = setup.fullscreen == 0 && setup.useWindowSize == 0;
  Size windowSize = wantsFrameSize ? setup.frameSize : setup.windowSize;
  Position position = setup.position;
  bool wasOpen = false;
  if (VideoWindow* window = findVideoWindow(setup.name)) {
    if (SdlServer* server = serverWithOpenPlayer(*window)) {
      wasOpen = true;
      const Refresh refresh = refreshOf(*server, *window, setup, windowSize);
      if (refresh.keep) return;
      position = refresh.position;
      windowSize = refresh.windowSize;
      server->closePlayer(static_cast<std::uint32_t>(window->playerId));
    }
    unregisterVideoWindow(setup.name);
  }
  VideoWindow* window = registerVideoWindow(setup.name, setup.frameSize, setup.synchronous);
  if (setup.openNow == 0 && !wasOpen) return;
  try {
    window->playerId = createPlayerForVideoWindow(*window, setup.title, setup.frameSize,
                                                  setup.fullscreen, position, windowSize);
  } catch (...) {
    forget(window);
    throw;
  }
}

std::int32_t VideoWindowRegistry::createPlayerForVideoWindow(const VideoWindow& window,
                                                             std::string_view title, Size frameSize,
                                                             std::uint8_t fullscreen,
                                                             Position position, Size windowSize) {
  if (windowSize == Size{kFrameSizeMarker, kFrameSizeMarker}) windowSize = frameSize;
  const std::vector<std::uint8_t> blank(frameByteCount(frameSize));
  SdlServer& server = serverFor(window.synchronous != 0);
  return static_cast<std::int32_t>(server.addPlayer(blank.data(), frameSize, normalised(title),
                                                    {position, windowSize}, fullscreen == 1));
}

void VideoWindowRegistry::openVideoWindow(VideoWindow& window, Size frameSize,
                                          std::uint8_t fullscreen, Size windowSize,
                                          Position position) {
  window.server = &serverFor(window.synchronous != 0);
  const auto playerId = static_cast<std::uint32_t>(window.playerId);
  if (window.server->hasOpenPlayer(playerId)) {
    window.server->raisePlayer(playerId);
    return;
  }
  window.playerId =
      createPlayerForVideoWindow(window, window.name, frameSize, fullscreen, position, windowSize);
}

void VideoWindowRegistry::closeVideoWindow(std::string_view name) {
  const VideoWindow* window = findVideoWindow(name);
  if (window == nullptr) return;
  if (SdlServer* server = serverWithOpenPlayer(/*synchronous=*/false, *window)) {
    server->closePlayer(static_cast<std::uint32_t>(window->playerId));
  }
  unregisterVideoWindow(name);
}

void VideoWindowRegistry::renameVideoWindowCore(std::string_view name, std::string_view newName,
                                                std::string_view newTitle) {
  const std::string title = normalised(newTitle);
  std::string ownName = normalised(newName);
  VideoWindow* window = findVideoWindow(name);
  if (window == nullptr) return;
  if (SdlServer* server = serverWithOpenPlayer(/*synchronous=*/false, *window)) {
    server->renamePlayer(static_cast<std::uint32_t>(window->playerId), title);
  }
  window->name = std::move(ownName);  // Last: where memory runs out nothing is renamed.
}

void VideoWindowRegistry::getVideoWindowPosSize(const VideoWindow& window, std::int32_t position[2],
                                                std::int32_t size[2]) const {
  std::optional<WindowGeometry> geometry;
  if (SdlServer* server = serverWithOpenPlayer(window)) {
    geometry = server->windowGeometry(static_cast<std::uint32_t>(window.playerId));
  }
  position[0] = geometry ? static_cast<std::int32_t>(geometry->position.x) : kNotOpen;
  position[1] = geometry ? static_cast<std::int32_t>(geometry->position.y) : kNotOpen;
  size[0] = geometry ? static_cast<std::int32_t>(geometry->size.width) : kNotOpen;
  size[1] = geometry ? static_cast<std::int32_t>(geometry->size.height) : kNotOpen;
}

bool VideoWindowRegistry::isVideoWindowOpen(const VideoWindow& window) const {
  return serverWithOpenPlayer(window) != nullptr;
}

std::uint32_t VideoWindowRegistry::frameWidthOf(std::string_view name) const {
  const VideoWindow* window = findVideoWindow(name);
  return window == nullptr ? 0 : window->frameWidth;
}

std::uint32_t VideoWindowRegistry::frameHeightOf(std::string_view name) const {
  const VideoWindow* window = findVideoWindow(name);
  return window == nullptr ? 0 : window->frameHeight;
}

std::uint8_t* VideoWindowRegistry::frameBufferOf(std::string_view name) const {
  const VideoWindow* window = findVideoWindow(name);
  return window == nullptr ? nullptr : window->frameBuffer.get();
}

std::int32_t VideoWindowRegistry::playerIdOf(std::string_view name) const {
  const VideoWindow* window = findVideoWindow(name);
  return window == nullptr ? kNoPlayerId : window->playerId;
}

namespace {
VideoWindowRegistry registry;
}

VideoWindowRegistry& videoWindowRegistry() { return registry; }

}  // namespace framesink
