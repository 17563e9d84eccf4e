#include <fcntl.h>
#include <io.h>

#include "system/descriptor.hpp"

namespace framesink::play {
namespace {

constexpr int kStandardInput = 0;

}  // namespace

int openFile(const char* path) { return _open(path, _O_RDONLY | _O_BINARY); }

std::ptrdiff_t readSome(int descriptor, void* to, std::size_t count) {
  return _read(descriptor, to, static_cast<unsigned>(count));
}

int standardInput() {
  _setmode(kStandardInput, _O_BINARY);
  return kStandardInput;
}

void closeFile(int descriptor) { _close(descriptor); }

bool waitForInput(int) { return true; }

}  // namespace framesink::play
