#include "process/x11_errors.hpp"

#include <SDL.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>

#include "process/image_range.hpp"

namespace framesink {
namespace {

constinit XErrorHandler* handlerInForce = nullptr;
constinit XErrorHandler standingHandler = nullptr;  // SDL's own while it waits for no error
constinit ImageRange handlersOfSdl[2];
constinit std::atomic<bool> areTold{false};

// Codes of the core protocol's errors, X11/X.h.
constexpr std::array<const char*, 18> kErrorNames = {
    "no error",  "BadRequest", "BadValue",    "BadWindow",   "BadPixmap", "BadAtom",
    "BadCursor", "BadFont",    "BadMatch",    "BadDrawable", "BadAccess", "BadAlloc",
    "BadColor",  "BadGC",      "BadIDChoice", "BadName",     "BadLength", "BadImplementation"};

constexpr std::size_t kKnownKinds = 64;
constinit std::array<std::atomic<std::uint32_t>, kKnownKinds> kinds{};

// SDL sets a temporary handler while it waits for an error that it expects.
bool doesSdlWait() {
  const XErrorHandler handler = *handlerInForce;
  if (handler == standingHandler) return false;
  const auto address = reinterpret_cast<std::uintptr_t>(handler);
  return handlersOfSdl[0].contains(address) || handlersOfSdl[1].contains(address);
}

// True for the first error of its kind. After kKnownKinds kinds, false for every further kind.
bool isNewKind(const XErrorEvent& error) {
  const std::uint32_t kind = std::uint32_t{error.error_code} << 16 |
                             std::uint32_t{error.request_code} << 8 | error.minor_code;
  for (auto& known : kinds) {
    std::uint32_t free = 0;
    if (known.compare_exchange_strong(free, kind)) return true;
    if (free == kind) return false;
  }
  return false;
}

void tell(const XErrorEvent& error) {
  if (!areTold || !isNewKind(error)) return;
  const char* name = error.error_code < kErrorNames.size() ? kErrorNames[error.error_code]
                                                           : "an extension's error";
  std::fprintf(stderr,
               "The display refused a request: %s (error %d, request %d.%d); the model runs on.\n",
               name, error.error_code, error.request_code, error.minor_code);
}

// Xlib drops the error if this returns False. While SDL waits for a refusal to share memory, it
// takes BadAccess alone for one; X servers refuse other computers with BadRequest. SDL passes every
// other error to the handler before its own, which ends the process. Such an error may be one of an
// earlier request, for a window that another client has destroyed.
Bool onError(Display*, XErrorEvent* error, xError*) {
  if (doesSdlWait()) {
    error->error_code = BadAccess;
    return True;
  }
  tell(*error);
  return False;
}

}  // namespace

void attachX11Errors(const Xlib& xlib, Display* display) {
  handlerInForce = xlib.errorHandler;
  standingHandler = *handlerInForce;
  // A host that started SDL itself may have set a handler of its own since.
  handlersOfSdl[0] = imageAround(reinterpret_cast<std::uintptr_t>(standingHandler), "libSDL");
  handlersOfSdl[1] = imageAround(reinterpret_cast<std::uintptr_t>(&SDL_CreateWindow));
  areTold = false;
  for (int code = 1; code < 256; ++code) xlib.setWireToError(display, code, onError);
}

void tellX11Errors() { areTold = true; }

}  // namespace framesink
