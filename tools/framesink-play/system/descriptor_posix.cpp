#include "system/descriptor.hpp"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace framesink::play {
namespace {

constexpr int kPatience = 50;  // milliseconds

}  // namespace

int openFile(const char* path) { return open(path, O_RDONLY | O_CLOEXEC); }

std::ptrdiff_t readSome(int descriptor, void* to, std::size_t count) {
  return read(descriptor, to, count);
}

int standardInput() { return STDIN_FILENO; }

void closeFile(int descriptor) { close(descriptor); }

bool waitForInput(int descriptor) {
  pollfd wanted{descriptor, POLLIN, 0};
  return poll(&wanted, 1, kPatience) > 0;
}

}  // namespace framesink::play
