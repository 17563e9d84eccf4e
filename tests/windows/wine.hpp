// Runs Windows programs on the tests' X server.
#pragma once

#include <string>
#include <vector>

#include "support/child_process.hpp"

namespace framesink::test {

// Wine takes a while to start, and on a busy machine a second to open a window.
inline constexpr std::chrono::seconds kWineDeadline{60};

// Runs a program under Wine. Wine itself runs from the first test to the last, because it keeps the
// size of the first screen it finds.
ChildProcess startOnWindows(const std::string& program,
                            const std::vector<std::string>& arguments = {});

}  // namespace framesink::test
