#include "process/sdl_generation.hpp"

#include <atomic>
#include <chrono>

#include "process/platform.hpp"

namespace framesink {
namespace {

constinit std::atomic<std::uint32_t> generation{0};
constinit std::atomic<std::uint32_t> uses{0};

}  // namespace

std::uint32_t sdlGeneration() { return generation; }

void endSdlGeneration() { generation.fetch_add(1); }

void endSdlGeneration(WaitBudget& budget) {
  endSdlGeneration();
  while (uses != 0 && !budget.isSpent()) sleepFor(std::chrono::milliseconds(1));
}

// Counts itself before it reads the generation, while endSdlGeneration ends it before it reads
// the count. So either the use sees that the generation has ended, or endSdlGeneration waits for the use.
SdlUse::SdlUse(std::uint32_t windowGeneration) {
  uses.fetch_add(1);
  current_ = generation == windowGeneration;
}

SdlUse::~SdlUse() { uses.fetch_sub(1); }

}  // namespace framesink
