#include "host/block_window.hpp"

#include <array>
#include <limits>
#include <new>

#include "system/failure.hpp"

namespace framesink::play {
namespace {

// A window size that means the frame's size.
constexpr int kFrameSize = std::numeric_limits<std::int32_t>::max();

// The error text of a call. One byte longer than the library may write, because its longest texts
// have no terminator.
class Message {
 public:
  char* buffer() { return text_.data(); }
  bool empty() const { return text_.front() == '\0'; }
  [[noreturn]] void fail() const {
    throw Failure(kLibraryTrouble,
                  std::string("the library reports: ") + (empty() ? "no block" : text_.data()));
  }

 private:
  std::array<char, FRAMESINK_ERROR_BYTES + 1> text_{};
};

}  // namespace

BlockWindow::BlockWindow(const Library& library, const WindowSettings& settings,
                         const InputDescription& description)
    : library_(library), name_(settings.name) {
  const auto x = settings.position ? static_cast<std::uint32_t>(settings.position->x)
                                   : FRAMESINK_POSITION_UNDEFINED;
  const auto y = settings.position ? static_cast<std::uint32_t>(settings.position->y)
                                   : FRAMESINK_POSITION_UNDEFINED;
  const Extent size = settings.size.value_or(Extent{kFrameSize, kFrameSize});
  Message message;
  try {
    block_ = library_.libCreate(message.buffer(), 0, name_.c_str(), settings.title.c_str(),
                                settings.fullscreen, &description, settings.open, x, y,
                                settings.size.has_value(), size.width, size.height, 0, 0,
                                settings.synchronous);
  } catch (const std::bad_alloc&) {
    throw Failure(kLibraryTrouble, "the library has no memory for frames of this size");
  }
  if (block_ == nullptr) message.fail();
  library_.libStart(block_, message.buffer());
  if (message.empty()) return;
  library_.libDestroy(block_);
  message.fail();
}

BlockWindow::~BlockWindow() {
  library_.libTerminate(block_);
  library_.libDestroy(block_);
}

bool BlockWindow::isOpen() const { return library_.isPlayerOpen(name_.c_str()) != 0; }

BlockWindow::Duration BlockWindow::update(const FramePlanes& planes) {
  const auto begin = std::chrono::steady_clock::now();
  Message message;
  library_.libUpdate(block_, message.buffer(), planes.plane(0), planes.plane(1), planes.plane(2),
                     FRAMESINK_CONFIGURED_SIZE, FRAMESINK_CONFIGURED_SIZE);
  if (!message.empty()) message.fail();
  return std::chrono::steady_clock::now() - begin;
}

}  // namespace framesink::play
