#include "support/output_file.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace framesink::test {

OutputFile::OutputFile() : descriptor_(memfd_create("captured output", MFD_CLOEXEC)) {
  if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "memfd_create");
}

OutputFile::~OutputFile() { close(descriptor_); }

// Uses pread because the writer's descriptor shares this file's offset, which must not move.
std::string OutputFile::text() const {
  std::string text;
  std::array<char, 4096> chunk{};
  ssize_t count = 0;
  while ((count = pread(descriptor_, chunk.data(), chunk.size(), static_cast<off_t>(text.size()))) >
         0) {
    text.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace framesink::test
