// kernel_fuzz_replay FOLDER: runs every file of the folder. Exits with 1 if there is none.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "kernel_fuzz_target.hpp"

namespace {

void play(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", arguments[0]);
    return 2;
  }
  int played = 0;
  for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
    play(entry.path());
    ++played;
  }
  std::printf("%d inputs played\n", played);
  return played > 0 ? 0 : 1;
}
