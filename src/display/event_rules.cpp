#include "display/event_rules.hpp"

#include <cstdint>

namespace framesink {
namespace {

AfterEvent handleWindowEvent(const SDL_WindowEvent& event, SdlPlayer& player)
    FRAMESINK_REQUIRES(sdlGate) {
  SdlWindow& window = *player.window();
  const auto data1 = static_cast<std::uint32_t>(event.data1);
  const auto data2 = static_cast<std::uint32_t>(event.data2);
  switch (event.event) {
    case SDL_WINDOWEVENT_EXPOSED:
    case SDL_WINDOWEVENT_MAXIMIZED:
    case SDL_WINDOWEVENT_RESTORED:
      player.showNewestFrame();
      break;
    case SDL_WINDOWEVENT_MOVED:
      window.setStoredPosition({data1, data2});
      break;
    case SDL_WINDOWEVENT_RESIZED:
      if (!window.isFullscreen()) window.setStoredSize({data1, data2});
      player.showNewestFrame();
      break;
    case SDL_WINDOWEVENT_CLOSE:
      return AfterEvent::kClose;
    default:
      break;
  }
  return AfterEvent::kGoOn;
}

}  // namespace

AfterEvent handleEvent(const SDL_Event& event, SdlPlayer& player) {
  if (event.type == SDL_WINDOWEVENT) return handleWindowEvent(event.window, player);
  const bool isEscape = event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE;
  if (isEscape && player.window()->isFullscreen()) player.window()->leaveFullscreen();
  return AfterEvent::kGoOn;
}

}  // namespace framesink
