// The lives of SDL in this process: windows outlive none of them.
#pragma once

#include <cstdint>

#include "process/wait_budget.hpp"

namespace framesink {

// The number of times the library has shut SDL down. A window belongs to the generation in which it
// was made. Once that generation has ended, the window's SDL objects are gone and must not be
// touched.
std::uint32_t sdlGeneration();

// Ends the generation: from now on, no SDL object that was made in it is touched.
void endSdlGeneration();

// Ends the generation and waits until no host thread uses its windows or the budget is spent.
void endSdlGeneration(WaitBudget& budget);

// While it lives, a host thread may use a window of that generation outside the gate: quitSdl
// waits. Converts to false if the generation has ended; the window must then not be touched.
class SdlUse {
 public:
  explicit SdlUse(std::uint32_t generation);
  ~SdlUse();
  SdlUse(const SdlUse&) = delete;
  SdlUse& operator=(const SdlUse&) = delete;

  explicit operator bool() const { return current_; }

 private:
  bool current_;
};

}  // namespace framesink
