#include "process/x11_shared_memory.hpp"

#include <X11/Xutil.h>
#include <sys/ipc.h>
#include <sys/shm.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>

namespace framesink {
namespace {

constinit std::atomic<int> opcode{0};
constinit std::atomic<long> toSkip{
    0};  // bytes of a request that the next flushed piece begins with

constexpr int kAttachRequest = 1;  // the minor code, from the MIT-SHM protocol
constexpr int kSide = 8;           // of the square pattern, in pixels

// A segment of this process, which the X server is asked to attach. Open to every user, as SDL's
// own segments are, because the X server may run as another one.
class Segment {
 public:
  explicit Segment(std::size_t bytes) : id_(::shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0777)) {
    if (id_ < 0) return;
    void* const memory = ::shmat(id_, nullptr, 0);
    if (reinterpret_cast<std::intptr_t>(memory) != -1) memory_ = memory;
  }
  ~Segment() {
    if (isThere()) ::shmdt(memory_);
    if (id_ >= 0) ::shmctl(id_, IPC_RMID, nullptr);
  }
  Segment(const Segment&) = delete;
  Segment& operator=(const Segment&) = delete;

  bool isThere() const { return memory_ != nullptr; }
  int id() const { return id_; }
  char* memory() const { return static_cast<char*>(memory_); }

 private:
  const int id_;
  void* memory_ = nullptr;
};

unsigned long patternAt(std::uint32_t seed, int x, int y, int depth) {
  std::uint32_t value = seed + static_cast<std::uint32_t>(y * kSide + x) * 0x9E3779B9U;
  value ^= value >> 15;
  return value & ((1UL << depth) - 1);
}

bool isPattern(XImage* image, std::uint32_t seed, int depth) {
  if (image == nullptr) return false;
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      if (XGetPixel(image, x, y) != patternAt(seed, x, y, depth)) return false;
    }
  }
  return true;
}

// Draws the shared picture into a pixmap and compares what the X server then has there.
bool isDrawn(const Xlib& xlib, Display* display, XImage* shared, std::uint32_t seed, int depth) {
  const Window root = DefaultRootWindow(display);
  const Pixmap pixmap =
      xlib.createPixmap(display, root, kSide, kSide, static_cast<unsigned>(depth));
  const GC context = xlib.createGc(display, pixmap, 0, nullptr);
  xlib.shmPutImage(display, pixmap, context, shared, 0, 0, 0, 0, kSide, kSide, False);
  XImage* drawn = xlib.getImage(display, pixmap, 0, 0, kSide, kSide, AllPlanes, ZPixmap);
  const bool isEqual = isPattern(drawn, seed, depth);
  if (drawn != nullptr) XDestroyImage(drawn);
  xlib.freeGc(display, context);
  xlib.freePixmap(display, pixmap);
  return isEqual;
}

bool isMemoryShared(const Xlib& xlib, Display* display) {
  const int depth = DefaultDepth(display, DefaultScreen(display));
  XShmSegmentInfo info{};
  XImage* image =
      xlib.shmCreateImage(display, DefaultVisual(display, DefaultScreen(display)),
                          static_cast<unsigned>(depth), ZPixmap, nullptr, &info, kSide, kSide);
  if (image == nullptr) return false;
  const Segment segment(static_cast<std::size_t>(image->bytes_per_line) * kSide);
  bool isShared = false;
  if (segment.isThere()) {
    const auto seed =
        static_cast<std::uint32_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    info.shmid = segment.id();
    info.shmaddr = image->data = segment.memory();
    info.readOnly = True;
    for (int y = 0; y < kSide; ++y) {
      for (int x = 0; x < kSide; ++x) XPutPixel(image, x, y, patternAt(seed, x, y, depth));
    }
    xlib.shmAttach(display, &info);
    isShared = isDrawn(xlib, display, image, seed, depth);
    xlib.shmDetach(display, &info);
    xlib.sync(display, False);
  }
  image->data = nullptr;
  XDestroyImage(image);
  return isShared;
}

// Replaces the number of the segment in each request to attach one by a number that no segment has.
// `piece` continues the stream of requests; its data lie in Xlib's own buffer or in the caller's.
void spoilAttachments(Display*, XExtCodes*, const char* piece, long bytes) {
  long at = toSkip;
  while (at + 4 <= bytes) {
    std::uint16_t words = 0;
    std::memcpy(&words, piece + at + 2, sizeof words);
    std::uint32_t length = words;
    if (words == 0 && at + 8 <= bytes) std::memcpy(&length, piece + at + 4, sizeof length);
    if (length == 0) break;
    const auto major = static_cast<unsigned char>(piece[at]);
    if (major == opcode && piece[at + 1] == kAttachRequest && at + 16 <= bytes) {
      constexpr std::int32_t kNoSegment = -1;
      std::memcpy(const_cast<char*>(piece) + at + 8, &kNoSegment, sizeof kNoSegment);
    }
    at += static_cast<long>(length) * 4;
  }
  toSkip = at > bytes ? at - bytes : 0;
}

}  // namespace

void avoidForeignMemory(const Xlib& xlib, Display* display) {
  int major = 0;
  int event = 0;
  int error = 0;
  opcode = 0;
  if (xlib.queryExtension(display, "MIT-SHM", &major, &event, &error) == 0) return;
  opcode = major;
  if (isMemoryShared(xlib, display)) return;
  xlib.sync(display, False);
  toSkip = 0;
  if (const XExtCodes* codes = xlib.addExtension(display)) {
    xlib.setBeforeFlush(display, codes->extension, spoilAttachments);
  }
}

}  // namespace framesink
