#include "sources/binary_input.hpp"

#include <algorithm>
#include <cerrno>

#include "sources/input_file.hpp"
#include "system/descriptor.hpp"
#include "system/signals.hpp"

namespace framesink::play {
namespace {

constexpr std::size_t kMostAtOnce = 1 << 24;  // bytes

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
    if (!waitForInput(descriptor_)) continue;
    const std::ptrdiff_t more = readSome(descriptor_, to + got, std::min(count - got, kMostAtOnce));
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
