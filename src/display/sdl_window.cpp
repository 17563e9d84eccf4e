#include "display/sdl_window.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "display/window_icon.hpp"
#include "process/display_loss.hpp"
#include "process/sdl_session.hpp"
#include "simd/texture_packing.hpp"

namespace framesink {
namespace {

// The library's own limits for what it hands to SDL.
constexpr int kFarthestPosition = 10000;
constexpr std::uint32_t kLargestWindow = 20000;

int clampedPosition(std::uint32_t coordinate) {
  const auto value = static_cast<int>(coordinate);
  const bool systemChooses = coordinate == SDL_WINDOWPOS_UNDEFINED;
  return systemChooses ? value : std::clamp(value, -kFarthestPosition, kFarthestPosition);
}

int clampedSize(std::uint32_t extent) {
  return static_cast<int>(std::clamp(extent, 1U, kLargestWindow));
}

// Truncates toward zero. Infinity and NaN, which a frame without pixels yields, become 0.
int truncatedPixels(double extent) { return std::isfinite(extent) ? static_cast<int>(extent) : 0; }

}  // namespace

SdlWindow::SdlWindow(const WindowRequest& request)
    : textureSize_(request.frameSize),
      title_(request.title),
      position_(request.geometry.position),
      size_(request.windowSize()),
      generation_(sdlGeneration()) {
  callSdl([&] { create(request.fullscreen); });
}

SdlWindow::~SdlWindow() {
  if (isSdlGone()) return;
  callSdl([&] {
    if (!failed_) {
      SDL_DestroyTexture(texture_);
      SDL_DestroyRenderer(renderer_);
    }
    watch_.end();
    SDL_DestroyWindow(window_);
  });
}

void SdlWindow::create(bool fullscreen) {
  createWindow(fullscreen);
  failed_ = watch_.isDestroyed() || SDL_GetWindowPixelFormat(window_) == SDL_PIXELFORMAT_UNKNOWN;
  if (!failed_) {
    createRenderer();
    createTexture();
    fitLogicalSize();
  }
  windowId_ = SDL_GetWindowID(window_);
}

void SdlWindow::createWindow(bool fullscreen) {
  const Position position = position_;
  const Size size = size_;
  const std::uint32_t flags =
      fullscreen ? SDL_WINDOW_HIDDEN | SDL_WINDOW_RESIZABLE | SDL_WINDOW_INPUT_FOCUS
                 : SDL_WINDOW_RESIZABLE;
  // If SDL video is down, SDL_CreateWindow initialises it.
  if ((SDL_WasInit(SDL_INIT_VIDEO) & SDL_INIT_VIDEO) == 0) prepareVideo();
  window_ =
      SDL_CreateWindow(title_.c_str(), clampedPosition(position.x), clampedPosition(position.y),
                       clampedSize(size.width), clampedSize(size.height), flags);
  if (window_ == nullptr) {
    std::fprintf(stderr, "Could not create window: %s\n", SDL_GetError());
    return;
  }
  joinVideo(window_);
  watch_.begin(window_);
  setIcon();
}

void SdlWindow::setIcon() {
  IconPixels pixels = windowIcon();
  SDL_Surface* icon = SDL_CreateRGBSurfaceFrom(pixels.data(), kIconSize, kIconSize, 16,
                                               kIconSize * 2, 0xF000, 0x0F00, 0x00F0, 0x000F);
  SDL_SetWindowIcon(window_, icon);
  SDL_FreeSurface(icon);
}

// Deliberately tries the software renderer first.
void SdlWindow::createRenderer() {
  renderer_ = SDL_CreateRenderer(window_, -1, SDL_RENDERER_SOFTWARE);
  if (renderer_ == nullptr) renderer_ = SDL_CreateRenderer(window_, -1, SDL_RENDERER_ACCELERATED);
  if (renderer_ != nullptr) return;
  const std::string reason = SDL_GetError();  // before other calls of SDL change it
  SDL_DestroyWindow(window_);
  window_ = nullptr;
  std::fprintf(stderr, "Could not create renderer: %s\n", reason.c_str());
}

void SdlWindow::createTexture() {
  texture_ = SDL_CreateTexture(renderer_, SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STREAMING,
                               static_cast<int>(textureSize_.width),
                               static_cast<int>(textureSize_.height));
  if (texture_ == nullptr) std::fprintf(stderr, "Unable to create texture: %s\n", SDL_GetError());
}

// Called once: the renderer keeps this aspect ratio, letterboxed, through every later resize.
void SdlWindow::fitLogicalSize() {
  int width = 0;
  int height = 0;
  SDL_GetWindowSize(window_, &width, &height);
  const double rx = static_cast<double>(width) / textureSize_.width;
  const double ry = static_cast<double>(height) / textureSize_.height;
  const int logicalWidth = ry > rx ? width : truncatedPixels(textureSize_.width * ry);
  const int logicalHeight = ry > rx ? truncatedPixels(textureSize_.height * rx) : height;
  if (SDL_RenderSetLogicalSize(renderer_, logicalWidth, logicalHeight) != 0) {
    std::fprintf(stderr, "Internal error: unable to set logical size: %s\n", SDL_GetError());
  }
}

void SdlWindow::showFrame(const std::uint8_t* frame) {
  if (failed_ || texture_ == nullptr || isSdlGone()) return;
  callSdl([&] { draw(frame); });
}

void SdlWindow::draw(const std::uint8_t* frame) {
  void* pixels = nullptr;
  int pitch = 0;
  if (SDL_LockTexture(texture_, nullptr, &pixels, &pitch) < 0) {
    SDL_LogError(SDL_LOG_CATEGORY_APPLICATION, "Could not lock texture: %s\n", SDL_GetError());
    // Deliberately gives SDL up with the texture. The windows' SDL objects are not touched again.
    quitSdl();
    return;
  }
  copyPlanesToTexture(frame, pixels, textureSize_.width, textureSize_.height);
  SDL_UnlockTexture(texture_);
  SDL_RenderClear(renderer_);
  SDL_RenderCopy(renderer_, texture_, nullptr, nullptr);
  SDL_RenderPresent(renderer_);
}

void SdlWindow::enterFullscreen() {
  if (isSdlGone()) return;
  callSdl([&] {
    SDL_SetWindowFullscreen(window_, SDL_WINDOW_FULLSCREEN_DESKTOP);
    SDL_ShowWindow(window_);
  });
}

bool SdlWindow::leaveFullscreen() {
  if (isSdlGone()) return false;
  bool left = false;
  return callSdl([&] {
           const Size size = size_;
           left = SDL_SetWindowFullscreen(window_, 0) == 0;
           SDL_SetWindowSize(window_, static_cast<int>(size.width), static_cast<int>(size.height));
         }) &&
         left;
}

void SdlWindow::raise() {
  if (isSdlGone()) return;
  callSdl([&] { SDL_RaiseWindow(window_); });
}

void SdlWindow::setTitle(std::string title) {
  title_ = std::move(title);
  if (isSdlGone()) return;
  callSdl([&] { SDL_SetWindowTitle(window_, title_.c_str()); });
}

// Reads what SDL remembers, without the display.
bool SdlWindow::isFullscreen() const {
  const SdlUse use(generation_);
  return use && (SDL_GetWindowFlags(window_) & kFullscreenFlags) != 0;
}

bool SdlWindow::isSdlGone() const { return generation_ != sdlGeneration(); }

}  // namespace framesink
