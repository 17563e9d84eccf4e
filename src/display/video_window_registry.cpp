#include "display/video_window_registry.hpp"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "display/server_instances.hpp"
#include "process/host_calls.hpp"

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

// The server in which the record's player is open and not closing, or null.
SdlServer* serverWithOpenPlayer(bool synchronous, const VideoWindow& window) {
  SdlServer* server = existingServer(synchronous);
  return server != nullptr && server->hasOpenPlayer(window.playerId) ? server : nullptr;
}

SdlServer* serverWithOpenPlayer(const VideoWindow& window) {
  return serverWithOpenPlayer(window.synchronous, window);
}

// True if an open player already matches the request.
bool isAsRequested(const PlayerState& state, const WindowRequest& request) {
  const bool sizeFits =
      request.fullscreen || request.useWindowSize || state.geometry.size == request.frameSize;
  return state.frameSize == request.frameSize && state.isFullscreen == request.fullscreen &&
         sizeFits;
}

}  // namespace

VideoWindowRegistry::VideoWindowRegistry() : windows_(new Windows) {}

// Records that a host call may still use stay until the process ends.
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
                                                      bool synchronous) {
  auto window = std::make_unique<VideoWindow>();
  window->name = normalised(name);
  window->synchronous = synchronous;
  window->frameBuffer = std::make_unique<std::uint8_t[]>(frameBytes(frameSize));
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
  WindowRequest request = setup.window;
  bool wasOpen = false;
  if (VideoWindow* window = findVideoWindow(setup.name)) {
    if (SdlServer* server = serverWithOpenPlayer(*window)) {
      wasOpen = true;
      if (const auto state = server->playerState(window->playerId)) {
        if (isAsRequested(*state, request) && setup.synchronous == window->synchronous) return;
        if (!state->isFullscreen) request.geometry = state->geometry;
      }
      server->closePlayer(window->playerId);
    }
    unregisterVideoWindow(setup.name);
  }
  VideoWindow* window = registerVideoWindow(setup.name, request.frameSize, setup.synchronous);
  if (!setup.openNow && !wasOpen) return;
  try {
    window->playerId = createPlayerForVideoWindow(*window, std::move(request));
  } catch (...) {
    forget(window);
    throw;
  }
}

PlayerId VideoWindowRegistry::createPlayerForVideoWindow(const VideoWindow& window,
                                                         WindowRequest request) {
  request.title = normalised(request.title);
  const std::vector<std::uint8_t> blank(frameBytes(request.frameSize));
  return serverFor(window.synchronous).addPlayer(blank.data(), std::move(request));
}

void VideoWindowRegistry::openVideoWindow(VideoWindow& window, WindowRequest request) {
  window.server = &serverFor(window.synchronous);
  if (window.server->hasOpenPlayer(window.playerId)) {
    window.server->raisePlayer(window.playerId);
    return;
  }
  request.title = window.name;
  window.playerId = createPlayerForVideoWindow(window, std::move(request));
}

void VideoWindowRegistry::closeVideoWindow(std::string_view name) {
  const VideoWindow* window = findVideoWindow(name);
  if (window == nullptr) return;
  if (SdlServer* server = serverWithOpenPlayer(/*synchronous=*/false, *window)) {
    server->closePlayer(window->playerId);
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
    server->renamePlayer(window->playerId, title);
  }
  window->name = std::move(ownName);  // Last, so that nothing is renamed if memory runs out.
}

void VideoWindowRegistry::getVideoWindowPosSize(const VideoWindow& window, std::int32_t position[2],
                                                std::int32_t size[2]) const {
  std::optional<WindowGeometry> geometry;
  if (SdlServer* server = serverWithOpenPlayer(window)) {
    geometry = server->windowGeometry(window.playerId);
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

PlayerId VideoWindowRegistry::playerIdOf(std::string_view name) const {
  const VideoWindow* window = findVideoWindow(name);
  return window == nullptr ? kNoPlayer : window->playerId;
}

namespace {
VideoWindowRegistry registry;
}

VideoWindowRegistry& videoWindowRegistry() { return registry; }

}  // namespace framesink
