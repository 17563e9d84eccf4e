#include "sources/binary_input.hpp"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

#if defined(_WIN32)
#include <io.h>
#else
#include <poll.h>
#include <unistd.h>
#endif

#include "sources/input_file.hpp"
#include "system/signals.hpp"

namespace framesink::play {
namespace {

constexpr int kStandardInput = 0;
constexpr std::size_t kMostAtOnce = 1 << 24;  // bytes

#if defined(_WIN32)
int openFile(const char* path) { return _open(path, _O_RDONLY | _O_BINARY); }
int standardInput() {
  _setmode(kStandardInput, _O_BINARY);
  return kStandardInput;
}
void closeFile(int descriptor) { _close(descriptor); }
bool isReady(int) { return true; }
auto readSome(int descriptor, void* to, std::size_t count) {
  return _read(descriptor, to, static_cast<unsigned>(count));
}
#else
constexpr int kPatience = 50;  // milliseconds between looks at the stop signal

int openFile(const char* path) { return open(path, O_RDONLY | O_CLOEXEC); }
int standardInput() { return kStandardInput; }
void closeFile(int descriptor) { close(descriptor); }
bool isReady(int descriptor) {
  pollfd wanted{descriptor, POLLIN, 0};
  return poll(&wanted, 1, kPatience) > 0;
}
auto readSome(int descriptor, void* to, std::size_t count) { return read(descriptor, to, count); }
#endif

}  // namespace

BinaryInput::BinaryInput(const std::string& path)
    : descriptor_(isStandardInput(path) ? standardInput() : openFile(path.c_str())),
      owned_(!isStandardInput(path)),
      error_(descriptor_ < 0 ? errno : 0) {}

BinaryInput::~BinaryInput() {
  if (owned_ && isOpen()) closeFile(descriptor_);
}

std::size_t BinaryInput::read(std::byte* to, std::size_t count) {
  std::size_t got = 0;
  while (got < count && stopSignal() == 0) {
    if (!isReady(descriptor_)) continue;
    const auto more = readSome(descriptor_, to + got, std::min(count - got, kMostAtOnce));
    if (more == 0) break;
    if (more > 0) {
      got += static_cast<std::size_t>(more);
    } else if (errno != EINTR && errno != EAGAIN) {
      error_ = errno;
      break;
    }
  }
  return got;
}

}  // namespace framesink::play
