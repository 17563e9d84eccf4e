// The functions of Xlib that the library calls, found at run time in the copies that SDL uses. Only
// for sources that are compiled where SDL has X11.
#pragma once

#include <X11/Xlib.h>
#include <X11/Xproto.h>
#include <X11/extensions/XShm.h>

namespace framesink {

using XErrorConverter = Bool (*)(Display*, XErrorEvent*, xError*);
using XEventConverter = Bool (*)(Display*, XEvent*, xEvent*);
using XFlushHook = void (*)(Display*, XExtCodes*, const char*, long);
using XExitHandler = void (*)(Display*, void*);

struct Xlib {
  // Finds everything if libX11 is loaded already, or if `mayLoad` and it can be loaded. False
  // without it. Keeps it loaded until close.
  bool open(bool mayLoad);
  void close();

  bool isOpen() const { return library_ != nullptr; }

  decltype(&::XSetIOErrorHandler) setIoErrorHandler = nullptr;
  XIOErrorHandler* ioErrorHandler = nullptr;  // the one in force
  XErrorHandler* errorHandler = nullptr;      // the one in force
  decltype(&::XConnectionNumber) connectionNumber = nullptr;
  decltype(&::XDisplayString) displayString = nullptr;
  decltype(&::XUnlockDisplay) unlockDisplay = nullptr;
  decltype(&::XPutBackEvent) putBackEvent = nullptr;
  decltype(&::XGetWindowAttributes) getWindowAttributes = nullptr;
  decltype(&::XQueryExtension) queryExtension = nullptr;
  XErrorConverter (*setWireToError)(Display*, int, XErrorConverter) = nullptr;
  XEventConverter (*setWireToEvent)(Display*, int, XEventConverter) = nullptr;
  // Null in versions of Xlib before 1.7.
  void (*setIoErrorExitHandler)(Display*, XExitHandler, void*) = nullptr;

  // For the test of shared memory.
  XExtCodes* (*addExtension)(Display*) = nullptr;
  XFlushHook (*setBeforeFlush)(Display*, int, XFlushHook) = nullptr;
  decltype(&::XSync) sync = nullptr;
  decltype(&::XCreatePixmap) createPixmap = nullptr;
  decltype(&::XFreePixmap) freePixmap = nullptr;
  decltype(&::XCreateGC) createGc = nullptr;
  decltype(&::XFreeGC) freeGc = nullptr;
  decltype(&::XGetImage) getImage = nullptr;
  decltype(&::XShmCreateImage) shmCreateImage = nullptr;
  decltype(&::XShmAttach) shmAttach = nullptr;
  decltype(&::XShmDetach) shmDetach = nullptr;
  decltype(&::XShmPutImage) shmPutImage = nullptr;

 private:
  bool find();

  void* library_ = nullptr;
  void* extensions_ = nullptr;
};

}  // namespace framesink
