// Takes the place of SDL's functions in this program (linker option --wrap) and passes each call on
// to SDL unless the test refuses it.
#include <SDL.h>

#include "foreign_leaks.hpp"
#include "sdl_watch.hpp"

namespace framesink::test {
namespace {

// `refused`: the answer of a call that is not made.
template <class Result, class... Parameters>
Result spied(const char* function, std::type_identity_t<Result> refused,
             Result (*real)(Parameters...), std::type_identity_t<Parameters>... arguments) {
  const SdlWatch watch(describedCall(function, arguments...));
  if (watch.isRefused()) {
    SDL_SetError("%s", kRefusal);
    return refused;
  }
  return fromNumber<Result>(watch.resultToGive(asNumber(real(arguments...))));
}

template <class... Parameters>
void spied(const char* function, void (*real)(Parameters...),
           std::type_identity_t<Parameters>... arguments) {
  const SdlWatch watch(describedCall(function, arguments...));
  if (!watch.isRefused()) real(arguments...);
}

}  // namespace
}  // namespace framesink::test

using framesink::test::spied;

extern "C" {

// ---- Life of SDL ----

decltype(SDL_Init) __real_SDL_Init;
int __wrap_SDL_Init(Uint32 flags) { return spied("SDL_Init", -1, __real_SDL_Init, flags); }

decltype(SDL_WasInit) __real_SDL_WasInit;
Uint32 __wrap_SDL_WasInit(Uint32 flags) {
  return spied("SDL_WasInit", 0, __real_SDL_WasInit, flags);
}

decltype(SDL_EnableScreenSaver) __real_SDL_EnableScreenSaver;
void __wrap_SDL_EnableScreenSaver() {
  spied("SDL_EnableScreenSaver", __real_SDL_EnableScreenSaver);
}

decltype(SDL_SetHintWithPriority) __real_SDL_SetHintWithPriority;
SDL_bool __wrap_SDL_SetHintWithPriority(const char* name, const char* value,
                                        SDL_HintPriority priority) {
  return spied("SDL_SetHintWithPriority", SDL_FALSE, __real_SDL_SetHintWithPriority, name, value,
               priority);
}

decltype(SDL_Quit) __real_SDL_Quit;
void __wrap_SDL_Quit() { spied("SDL_Quit", __real_SDL_Quit); }

// ---- Threads and locks ----

// SDL's header makes a macro of it on some systems; on this one it is a function.
decltype(SDL_CreateThread) __real_SDL_CreateThread;
SDL_Thread* __wrap_SDL_CreateThread(SDL_ThreadFunction body, const char* name, void* data) {
  SDL_Thread* thread =
      spied("SDL_CreateThread", nullptr, __real_SDL_CreateThread, body, name, data);
  framesink::test::noteThread(thread);
  return thread;
}

decltype(SDL_WaitThread) __real_SDL_WaitThread;
void __wrap_SDL_WaitThread(SDL_Thread* thread, int* status) {
  spied("SDL_WaitThread", __real_SDL_WaitThread, thread, status);
}

decltype(SDL_DetachThread) __real_SDL_DetachThread;
void __wrap_SDL_DetachThread(SDL_Thread* thread) {
  spied("SDL_DetachThread", __real_SDL_DetachThread, thread);
}

decltype(SDL_CreateMutex) __real_SDL_CreateMutex;
SDL_mutex* __wrap_SDL_CreateMutex() {
  return spied("SDL_CreateMutex", nullptr, __real_SDL_CreateMutex);
}

decltype(SDL_DestroyMutex) __real_SDL_DestroyMutex;
void __wrap_SDL_DestroyMutex(SDL_mutex* mutex) {
  spied("SDL_DestroyMutex", __real_SDL_DestroyMutex, mutex);
}

decltype(SDL_LockMutex) __real_SDL_LockMutex;
int __wrap_SDL_LockMutex(SDL_mutex* mutex) {
  return spied("SDL_LockMutex", -1, __real_SDL_LockMutex, mutex);
}

decltype(SDL_UnlockMutex) __real_SDL_UnlockMutex;
int __wrap_SDL_UnlockMutex(SDL_mutex* mutex) {
  return spied("SDL_UnlockMutex", -1, __real_SDL_UnlockMutex, mutex);
}

decltype(SDL_Delay) __real_SDL_Delay;
void __wrap_SDL_Delay(Uint32 milliseconds) { spied("SDL_Delay", __real_SDL_Delay, milliseconds); }

// ---- Events ----

decltype(SDL_PollEvent) __real_SDL_PollEvent;
int __wrap_SDL_PollEvent(SDL_Event* event) {
  return spied("SDL_PollEvent", 0, __real_SDL_PollEvent, event);
}

// ---- Windows ----

decltype(SDL_CreateWindow) __real_SDL_CreateWindow;
SDL_Window* __wrap_SDL_CreateWindow(const char* title, int x, int y, int w, int h, Uint32 flags) {
  return spied("SDL_CreateWindow", nullptr, __real_SDL_CreateWindow, title, x, y, w, h, flags);
}

decltype(SDL_DestroyWindow) __real_SDL_DestroyWindow;
void __wrap_SDL_DestroyWindow(SDL_Window* window) {
  spied("SDL_DestroyWindow", __real_SDL_DestroyWindow, window);
}

decltype(SDL_GetWindowPixelFormat) __real_SDL_GetWindowPixelFormat;
Uint32 __wrap_SDL_GetWindowPixelFormat(SDL_Window* window) {
  return spied("SDL_GetWindowPixelFormat", 0, __real_SDL_GetWindowPixelFormat, window);
}

decltype(SDL_GetWindowID) __real_SDL_GetWindowID;
Uint32 __wrap_SDL_GetWindowID(SDL_Window* window) {
  return spied("SDL_GetWindowID", 0, __real_SDL_GetWindowID, window);
}

decltype(SDL_GetWindowFlags) __real_SDL_GetWindowFlags;
Uint32 __wrap_SDL_GetWindowFlags(SDL_Window* window) {
  return spied("SDL_GetWindowFlags", 0, __real_SDL_GetWindowFlags, window);
}

decltype(SDL_SetWindowSize) __real_SDL_SetWindowSize;
void __wrap_SDL_SetWindowSize(SDL_Window* window, int w, int h) {
  spied("SDL_SetWindowSize", __real_SDL_SetWindowSize, window, w, h);
}

decltype(SDL_SetWindowFullscreen) __real_SDL_SetWindowFullscreen;
int __wrap_SDL_SetWindowFullscreen(SDL_Window* window, Uint32 flags) {
  return spied("SDL_SetWindowFullscreen", -1, __real_SDL_SetWindowFullscreen, window, flags);
}

decltype(SDL_ShowWindow) __real_SDL_ShowWindow;
void __wrap_SDL_ShowWindow(SDL_Window* window) {
  spied("SDL_ShowWindow", __real_SDL_ShowWindow, window);
}

decltype(SDL_RaiseWindow) __real_SDL_RaiseWindow;
void __wrap_SDL_RaiseWindow(SDL_Window* window) {
  spied("SDL_RaiseWindow", __real_SDL_RaiseWindow, window);
}

decltype(SDL_SetWindowTitle) __real_SDL_SetWindowTitle;
void __wrap_SDL_SetWindowTitle(SDL_Window* window, const char* title) {
  spied("SDL_SetWindowTitle", __real_SDL_SetWindowTitle, window, title);
}

decltype(SDL_CreateRGBSurfaceFrom) __real_SDL_CreateRGBSurfaceFrom;
SDL_Surface* __wrap_SDL_CreateRGBSurfaceFrom(void* pixels, int width, int height, int depth,
                                             int pitch, Uint32 red, Uint32 green, Uint32 blue,
                                             Uint32 alpha) {
  return spied("SDL_CreateRGBSurfaceFrom", nullptr, __real_SDL_CreateRGBSurfaceFrom, pixels, width,
               height, depth, pitch, red, green, blue, alpha);
}

decltype(SDL_SetWindowIcon) __real_SDL_SetWindowIcon;
void __wrap_SDL_SetWindowIcon(SDL_Window* window, SDL_Surface* icon) {
  spied("SDL_SetWindowIcon", __real_SDL_SetWindowIcon, window, icon);
}

decltype(SDL_FreeSurface) __real_SDL_FreeSurface;
void __wrap_SDL_FreeSurface(SDL_Surface* surface) {
  spied("SDL_FreeSurface", __real_SDL_FreeSurface, surface);
}

// ---- Drawing ----

decltype(SDL_CreateRenderer) __real_SDL_CreateRenderer;
SDL_Renderer* __wrap_SDL_CreateRenderer(SDL_Window* window, int index, Uint32 flags) {
  return spied("SDL_CreateRenderer", nullptr, __real_SDL_CreateRenderer, window, index, flags);
}

decltype(SDL_DestroyRenderer) __real_SDL_DestroyRenderer;
void __wrap_SDL_DestroyRenderer(SDL_Renderer* renderer) {
  spied("SDL_DestroyRenderer", __real_SDL_DestroyRenderer, renderer);
}

decltype(SDL_CreateTexture) __real_SDL_CreateTexture;
SDL_Texture* __wrap_SDL_CreateTexture(SDL_Renderer* renderer, Uint32 format, int access, int w,
                                      int h) {
  return spied("SDL_CreateTexture", nullptr, __real_SDL_CreateTexture, renderer, format, access, w,
               h);
}

decltype(SDL_DestroyTexture) __real_SDL_DestroyTexture;
void __wrap_SDL_DestroyTexture(SDL_Texture* texture) {
  spied("SDL_DestroyTexture", __real_SDL_DestroyTexture, texture);
}

decltype(SDL_RenderSetLogicalSize) __real_SDL_RenderSetLogicalSize;
int __wrap_SDL_RenderSetLogicalSize(SDL_Renderer* renderer, int w, int h) {
  return spied("SDL_RenderSetLogicalSize", -1, __real_SDL_RenderSetLogicalSize, renderer, w, h);
}

decltype(SDL_LockTexture) __real_SDL_LockTexture;
int __wrap_SDL_LockTexture(SDL_Texture* texture, const SDL_Rect* part, void** pixels, int* pitch) {
  return spied("SDL_LockTexture", -1, __real_SDL_LockTexture, texture, part, pixels, pitch);
}

decltype(SDL_UnlockTexture) __real_SDL_UnlockTexture;
void __wrap_SDL_UnlockTexture(SDL_Texture* texture) {
  spied("SDL_UnlockTexture", __real_SDL_UnlockTexture, texture);
}

decltype(SDL_RenderClear) __real_SDL_RenderClear;
int __wrap_SDL_RenderClear(SDL_Renderer* renderer) {
  return spied("SDL_RenderClear", -1, __real_SDL_RenderClear, renderer);
}

decltype(SDL_RenderCopy) __real_SDL_RenderCopy;
int __wrap_SDL_RenderCopy(SDL_Renderer* renderer, SDL_Texture* texture, const SDL_Rect* from,
                          const SDL_Rect* to) {
  return spied("SDL_RenderCopy", -1, __real_SDL_RenderCopy, renderer, texture, from, to);
}

decltype(SDL_RenderPresent) __real_SDL_RenderPresent;
void __wrap_SDL_RenderPresent(SDL_Renderer* renderer) {
  spied("SDL_RenderPresent", __real_SDL_RenderPresent, renderer);
}

}  // extern "C"
