// Converts one small frame with each kernel and lets callgrind record the instructions of each. Prints
// the instruction set of the kernels. Runs only under callgrind: `./dev bench --instructions`.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <string>

#include "conversion.hpp"

int main() {
  using namespace framesink;
  constexpr oracle::Frame kSmallFrame{320, 240, 1};
  std::printf("%s\n", instructionSets().front().name.c_str());
  for (const KernelCase& test : kernelCases()) {
    const std::string name = nameOf(test);
    Conversion conversion(test, kSmallFrame);
    conversion.run();
    CALLGRIND_ZERO_STATS;
    conversion.run();
    CALLGRIND_DUMP_STATS_AT(name.c_str());
  }
}
