#include "process/xlib.hpp"

#include <dlfcn.h>

namespace framesink {
namespace {

template <class Function>
bool look(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(library, name));
  return function != nullptr;
}

}  // namespace

bool Xlib::open(bool mayLoad) {
  if (isOpen()) return true;
  const int mode = RTLD_LAZY | (mayLoad ? 0 : RTLD_NOLOAD);
  library_ = ::dlopen("libX11.so.6", mode);
  extensions_ = ::dlopen("libXext.so.6", mode);
  if (library_ != nullptr && extensions_ != nullptr && find()) return true;
  close();
  return false;
}

void Xlib::close() {
  if (extensions_ != nullptr) ::dlclose(extensions_);
  if (library_ != nullptr) ::dlclose(library_);
  *this = Xlib();
}

bool Xlib::find() {
  look(library_, "XSetIOErrorExitHandler", setIoErrorExitHandler);
  return look(library_, "XSetIOErrorHandler", setIoErrorHandler) &&
         look(library_, "_XIOErrorFunction", ioErrorHandler) &&
         look(library_, "_XErrorFunction", errorHandler) &&
         look(library_, "XConnectionNumber", connectionNumber) &&
         look(library_, "XDisplayString", displayString) &&
         look(library_, "XUnlockDisplay", unlockDisplay) &&
         look(library_, "XPutBackEvent", putBackEvent) &&
         look(library_, "XGetWindowAttributes", getWindowAttributes) &&
         look(library_, "XQueryExtension", queryExtension) &&
         look(library_, "XESetWireToError", setWireToError) &&
         look(library_, "XESetWireToEvent", setWireToEvent) &&
         look(library_, "XAddExtension", addExtension) &&
         look(library_, "XESetBeforeFlush", setBeforeFlush) && look(library_, "XSync", sync) &&
         look(library_, "XCreatePixmap", createPixmap) &&
         look(library_, "XFreePixmap", freePixmap) && look(library_, "XCreateGC", createGc) &&
         look(library_, "XFreeGC", freeGc) && look(library_, "XGetImage", getImage) &&
         look(extensions_, "XShmCreateImage", shmCreateImage) &&
         look(extensions_, "XShmAttach", shmAttach) && look(extensions_, "XShmDetach", shmDetach) &&
         look(extensions_, "XShmPutImage", shmPutImage);
}

}  // namespace framesink
