#include "process/opengl.hpp"

#if defined(__ELF__)

#include <cxxabi.h>
#include <dlfcn.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>

namespace framesink {

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
void stayLoaded() {}
void callFirstAtExit(void (*)()) {}
}  // namespace framesink

#endif
