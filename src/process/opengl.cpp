#include "process/opengl.hpp"

#if defined(__ELF__)

#include <cxxabi.h>
#include <dlfcn.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
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

// SDL tries X11 first, so a compositor matters only if DISPLAY is not set.
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

bool isOpenGlInUse() { return isOnWayland() || isOpenGlChosen(); }

void stayLoaded() {
  Dl_info self;
  if (::dladdr(reinterpret_cast<void*>(&stayLoaded), &self) == 0) return;
  ::dlopen(self.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

// exit() destroys the thread_local objects of its thread before any static object. `end` is
// registered like the destructor of such an object; a real one would need thread-local storage,
// which this library avoids so that it really unloads. Main thread only, because on any other
// thread `end` would also run when that thread ends.
void callFirstAtExit(void (*end)()) {
  static std::atomic<bool> isRegistered{false};
  if (::syscall(SYS_gettid) != ::getpid() || isRegistered.exchange(true)) return;
  abi::__cxa_thread_atexit([](void* call) { reinterpret_cast<void (*)()>(call)(); },
                           reinterpret_cast<void*>(end), &isRegistered);
}

}  // namespace framesink

#else

namespace framesink {
bool isOpenGlInUse() { return false; }
void stayLoaded() {}
void callFirstAtExit(void (*)()) {}
}  // namespace framesink

#endif
