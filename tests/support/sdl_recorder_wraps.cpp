// Replaces SDL's functions in this program (linker option --wrap) and passes each call on to SDL
// unless the test refuses it.
#include <SDL.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <utility>

#include "support/foreign_leaks.hpp"
#include "support/sdl_clock.hpp"
#include "support/sdl_recorder_state.hpp"

extern "C" decltype(SDL_GetError) __real_SDL_GetError;

namespace framesink::test {
namespace {

// SDL sets an error text for failures that are null pointers or negative numbers.
template <class Result>
bool hasErrorText(Result failure) {
  return std::is_pointer_v<Result> || asNumber(failure) < 0;
}

// `failure` is the result of a failed or refused call; `perform` makes the call.
template <class Result, class Perform>
Result recordedCall(SdlCall call, Result failure, Perform perform) {
  call.fallible = true;
  const RecordedCall recording(std::move(call));
  Result result = failure;
  recording.loseAt(LossMoment::kInsteadOfCall);
  if (recording.isRefused()) {
    SDL_SetError("%s", kRefusal);
  } else {
    result = perform(recording);
  }
  const bool hasError = result == failure && hasErrorText(failure);
  const std::int64_t answer =
      recording.answer(asNumber(result), hasError ? __real_SDL_GetError() : "");
  recording.loseAt(LossMoment::kAfterCall);
  return fromNumber<Result>(answer);
}

template <class Result, class... Parameters>
Result recorded(const char* function, std::type_identity_t<Result> failure,
                Result (*real)(Parameters...), std::type_identity_t<Parameters>... arguments) {
  if (!isRecording()) return real(arguments...);
  return recordedCall(describedCall(function, arguments...), failure,
                      [&](const RecordedCall&) { return real(arguments...); });
}

template <class... Parameters>
void recorded(const char* function, void (*real)(Parameters...),
              std::type_identity_t<Parameters>... arguments) {
  if (!isRecording()) return real(arguments...);
  const RecordedCall recording(describedCall(function, arguments...));
  recording.loseAt(LossMoment::kInsteadOfCall);
  if (!recording.isRefused()) real(arguments...);
  recording.loseAt(LossMoment::kAfterCall);
}

}  // namespace
}  // namespace framesink::test

using framesink::test::describedCall;
using framesink::test::isRecording;
using framesink::test::recorded;
using framesink::test::recordedCall;
using framesink::test::RecordedCall;
using framesink::test::SdlClock;

extern "C" {

// ---- Life of SDL ----

decltype(SDL_Init) __real_SDL_Init;
int __wrap_SDL_Init(Uint32 flags) { return recorded("SDL_Init", -1, __real_SDL_Init, flags); }

decltype(SDL_WasInit) __real_SDL_WasInit;
Uint32 __wrap_SDL_WasInit(Uint32 flags) {
  return recorded("SDL_WasInit", 0, __real_SDL_WasInit, flags);
}

decltype(SDL_EnableScreenSaver) __real_SDL_EnableScreenSaver;
void __wrap_SDL_EnableScreenSaver() {
  recorded("SDL_EnableScreenSaver", __real_SDL_EnableScreenSaver);
}

decltype(SDL_SetHintWithPriority) __real_SDL_SetHintWithPriority;
SDL_bool __wrap_SDL_SetHintWithPriority(const char* name, const char* value,
                                        SDL_HintPriority priority) {
  return recorded("SDL_SetHintWithPriority", SDL_FALSE, __real_SDL_SetHintWithPriority, name, value,
                  priority);
}

decltype(SDL_Quit) __real_SDL_Quit;
void __wrap_SDL_Quit() { recorded("SDL_Quit", __real_SDL_Quit); }

// ---- Threads and locks ----

// A macro in SDL's header on some systems; on this one a function.
decltype(SDL_CreateThread) __real_SDL_CreateThread;
SDL_Thread* __wrap_SDL_CreateThread(SDL_ThreadFunction body, const char* name, void* data) {
  SDL_Thread* thread =
      recorded("SDL_CreateThread", nullptr, __real_SDL_CreateThread, body, name, data);
  framesink::test::noteThread(thread);
  SdlClock* clock = SdlClock::current();
  const bool isDisplays = std::strcmp(name, "sdlVideoPlayers") == 0;
  if (clock != nullptr && thread != nullptr && isDisplays) clock->awaitFirstRest();
  return thread;
}

decltype(SDL_WaitThread) __real_SDL_WaitThread;
void __wrap_SDL_WaitThread(SDL_Thread* thread, int* status) {
  recorded("SDL_WaitThread", __real_SDL_WaitThread, thread, status);
}

decltype(SDL_DetachThread) __real_SDL_DetachThread;
void __wrap_SDL_DetachThread(SDL_Thread* thread) {
  recorded("SDL_DetachThread", __real_SDL_DetachThread, thread);
}

decltype(SDL_CreateMutex) __real_SDL_CreateMutex;
SDL_mutex* __wrap_SDL_CreateMutex() {
  return recorded("SDL_CreateMutex", nullptr, __real_SDL_CreateMutex);
}

decltype(SDL_DestroyMutex) __real_SDL_DestroyMutex;
void __wrap_SDL_DestroyMutex(SDL_mutex* mutex) {
  recorded("SDL_DestroyMutex", __real_SDL_DestroyMutex, mutex);
}

decltype(SDL_LockMutex) __real_SDL_LockMutex;
int __wrap_SDL_LockMutex(SDL_mutex* mutex) {
  return recorded("SDL_LockMutex", -1, __real_SDL_LockMutex, mutex);
}

decltype(SDL_UnlockMutex) __real_SDL_UnlockMutex;
int __wrap_SDL_UnlockMutex(SDL_mutex* mutex) {
  if (recorded("SDL_UnlockMutex", -1, __real_SDL_UnlockMutex, mutex) == 0) return 0;
  __real_SDL_UnlockMutex(mutex);
  return -1;
}

decltype(SDL_Delay) __real_SDL_Delay;
void __wrap_SDL_Delay(Uint32 milliseconds) {
  const auto rest = [](Uint32 duration) {
    SdlClock* clock = SdlClock::current();
    clock == nullptr ? __real_SDL_Delay(duration) : clock->rest(duration);
  };
  recorded("SDL_Delay", +rest, milliseconds);
}

// ---- Events ----

decltype(SDL_PollEvent) __real_SDL_PollEvent;
int __wrap_SDL_PollEvent(SDL_Event* event) {
  if (!isRecording()) return __real_SDL_PollEvent(event);
  return recordedCall(describedCall("SDL_PollEvent", event), 0, [=](const auto& recording) {
    return recording.takeFedEvent(event) ? 1 : __real_SDL_PollEvent(event);
  });
}

// ---- Windows ----

decltype(SDL_CreateWindow) __real_SDL_CreateWindow;
SDL_Window* __wrap_SDL_CreateWindow(const char* title, int x, int y, int w, int h, Uint32 flags) {
  return recorded("SDL_CreateWindow", nullptr, __real_SDL_CreateWindow, title, x, y, w, h, flags);
}

decltype(SDL_DestroyWindow) __real_SDL_DestroyWindow;
void __wrap_SDL_DestroyWindow(SDL_Window* window) {
  recorded("SDL_DestroyWindow", __real_SDL_DestroyWindow, window);
}

decltype(SDL_GetWindowPixelFormat) __real_SDL_GetWindowPixelFormat;
Uint32 __wrap_SDL_GetWindowPixelFormat(SDL_Window* window) {
  return recorded("SDL_GetWindowPixelFormat", 0, __real_SDL_GetWindowPixelFormat, window);
}

decltype(SDL_GetWindowID) __real_SDL_GetWindowID;
Uint32 __wrap_SDL_GetWindowID(SDL_Window* window) {
  return recorded("SDL_GetWindowID", 0, __real_SDL_GetWindowID, window);
}

decltype(SDL_GetWindowFlags) __real_SDL_GetWindowFlags;
Uint32 __wrap_SDL_GetWindowFlags(SDL_Window* window) {
  return recorded("SDL_GetWindowFlags", 0, __real_SDL_GetWindowFlags, window);
}

decltype(SDL_GetWindowSize) __real_SDL_GetWindowSize;
void __wrap_SDL_GetWindowSize(SDL_Window* window, int* w, int* h) {
  recorded("SDL_GetWindowSize", __real_SDL_GetWindowSize, window, w, h);
}

decltype(SDL_SetWindowSize) __real_SDL_SetWindowSize;
void __wrap_SDL_SetWindowSize(SDL_Window* window, int w, int h) {
  recorded("SDL_SetWindowSize", __real_SDL_SetWindowSize, window, w, h);
}

decltype(SDL_SetWindowFullscreen) __real_SDL_SetWindowFullscreen;
int __wrap_SDL_SetWindowFullscreen(SDL_Window* window, Uint32 flags) {
  return recorded("SDL_SetWindowFullscreen", -1, __real_SDL_SetWindowFullscreen, window, flags);
}

decltype(SDL_ShowWindow) __real_SDL_ShowWindow;
void __wrap_SDL_ShowWindow(SDL_Window* window) {
  recorded("SDL_ShowWindow", __real_SDL_ShowWindow, window);
}

decltype(SDL_RaiseWindow) __real_SDL_RaiseWindow;
void __wrap_SDL_RaiseWindow(SDL_Window* window) {
  recorded("SDL_RaiseWindow", __real_SDL_RaiseWindow, window);
}

decltype(SDL_SetWindowTitle) __real_SDL_SetWindowTitle;
void __wrap_SDL_SetWindowTitle(SDL_Window* window, const char* title) {
  recorded("SDL_SetWindowTitle", __real_SDL_SetWindowTitle, window, title);
}

decltype(SDL_CreateRGBSurfaceFrom) __real_SDL_CreateRGBSurfaceFrom;
SDL_Surface* __wrap_SDL_CreateRGBSurfaceFrom(void* pixels, int width, int height, int depth,
                                             int pitch, Uint32 red, Uint32 green, Uint32 blue,
                                             Uint32 alpha) {
  return recorded("SDL_CreateRGBSurfaceFrom", nullptr, __real_SDL_CreateRGBSurfaceFrom, pixels,
                  width, height, depth, pitch, red, green, blue, alpha);
}

decltype(SDL_SetWindowIcon) __real_SDL_SetWindowIcon;
void __wrap_SDL_SetWindowIcon(SDL_Window* window, SDL_Surface* icon) {
  recorded("SDL_SetWindowIcon", __real_SDL_SetWindowIcon, window, icon);
}

decltype(SDL_FreeSurface) __real_SDL_FreeSurface;
void __wrap_SDL_FreeSurface(SDL_Surface* surface) {
  recorded("SDL_FreeSurface", __real_SDL_FreeSurface, surface);
}

// ---- Drawing ----

decltype(SDL_CreateRenderer) __real_SDL_CreateRenderer;
SDL_Renderer* __wrap_SDL_CreateRenderer(SDL_Window* window, int index, Uint32 flags) {
  return recorded("SDL_CreateRenderer", nullptr, __real_SDL_CreateRenderer, window, index, flags);
}

decltype(SDL_DestroyRenderer) __real_SDL_DestroyRenderer;
void __wrap_SDL_DestroyRenderer(SDL_Renderer* renderer) {
  recorded("SDL_DestroyRenderer", __real_SDL_DestroyRenderer, renderer);
}

decltype(SDL_CreateTexture) __real_SDL_CreateTexture;
SDL_Texture* __wrap_SDL_CreateTexture(SDL_Renderer* renderer, Uint32 format, int access, int w,
                                      int h) {
  return recorded("SDL_CreateTexture", nullptr, __real_SDL_CreateTexture, renderer, format, access,
                  w, h);
}

decltype(SDL_DestroyTexture) __real_SDL_DestroyTexture;
void __wrap_SDL_DestroyTexture(SDL_Texture* texture) {
  recorded("SDL_DestroyTexture", __real_SDL_DestroyTexture, texture);
}

decltype(SDL_RenderSetLogicalSize) __real_SDL_RenderSetLogicalSize;
int __wrap_SDL_RenderSetLogicalSize(SDL_Renderer* renderer, int w, int h) {
  return recorded("SDL_RenderSetLogicalSize", -1, __real_SDL_RenderSetLogicalSize, renderer, w, h);
}

decltype(SDL_LockTexture) __real_SDL_LockTexture;
int __wrap_SDL_LockTexture(SDL_Texture* texture, const SDL_Rect* part, void** pixels, int* pitch) {
  return recorded("SDL_LockTexture", -1, __real_SDL_LockTexture, texture, part, pixels, pitch);
}

decltype(SDL_UnlockTexture) __real_SDL_UnlockTexture;
void __wrap_SDL_UnlockTexture(SDL_Texture* texture) {
  recorded("SDL_UnlockTexture", __real_SDL_UnlockTexture, texture);
}

decltype(SDL_RenderClear) __real_SDL_RenderClear;
int __wrap_SDL_RenderClear(SDL_Renderer* renderer) {
  return recorded("SDL_RenderClear", -1, __real_SDL_RenderClear, renderer);
}

decltype(SDL_RenderCopy) __real_SDL_RenderCopy;
int __wrap_SDL_RenderCopy(SDL_Renderer* renderer, SDL_Texture* texture, const SDL_Rect* from,
                          const SDL_Rect* to) {
  return recorded("SDL_RenderCopy", -1, __real_SDL_RenderCopy, renderer, texture, from, to);
}

decltype(SDL_RenderPresent) __real_SDL_RenderPresent;
void __wrap_SDL_RenderPresent(SDL_Renderer* renderer) {
  recorded("SDL_RenderPresent", __real_SDL_RenderPresent, renderer);
}

// ---- Errors ----

const char* __wrap_SDL_GetError() {
  const char* text = "";
  const auto ask = [](const char** answer) { *answer = __real_SDL_GetError(); };
  recorded("SDL_GetError", +ask, &text);
  return text;
}

// The arguments of a variadic function cannot be passed on, so the text is formatted here.
void __wrap_SDL_LogError(int category, const char* format, ...) {
  std::array<char, 1024> text;
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  const char* message = text.data();
  const auto log = [](int of, const char* what) {
    SDL_LogMessage(of, SDL_LOG_PRIORITY_ERROR, "%s", what);
  };
  recorded("SDL_LogError", +log, category, message);
}

}  // extern "C"
