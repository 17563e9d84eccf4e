#include "display/stay_loaded.hpp"

#if defined(__ELF__)

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <string_view>

namespace framesink {
namespace {

std::string_view variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string_view() : std::string_view(value);
}

bool isCompositorThere() {
  if (!variable("WAYLAND_DISPLAY").empty()) return true;
  const std::string socket = std::string(variable("XDG_RUNTIME_DIR")) + "/wayland-0";
  return ::access(socket.c_str(), F_OK) == 0;
}

// SDL itself tries X11 first.
bool isOnWayland() {
  const std::string_view driver = variable("SDL_VIDEODRIVER");
  if (!driver.empty()) return driver.starts_with("wayland");
  return variable("DISPLAY").empty() && isCompositorThere();
}

bool isOpenGlChosen() {
  const std::string_view acceleration = variable("SDL_FRAMEBUFFER_ACCELERATION");
  const std::string_view renderer = variable("SDL_RENDER_DRIVER");
  const bool isPlain = acceleration.empty() || acceleration == "0" || acceleration == "false" ||
                       acceleration == "software";
  return !isPlain || (!renderer.empty() && renderer != "software");
}

}  // namespace

void stayLoadedWithOpenGl() {
  if (!isOnWayland() && !isOpenGlChosen()) return;
  Dl_info self;
  if (::dladdr(reinterpret_cast<void*>(&stayLoadedWithOpenGl), &self) == 0) return;
  ::dlopen(self.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

}  // namespace framesink

#else

namespace framesink {
void stayLoadedWithOpenGl() {}
}  // namespace framesink

#endif
