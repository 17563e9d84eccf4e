// The account that --stats prints at the end.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "report/time_histogram.hpp"

namespace framesink::play {

// The frames of one kind and type, in all their windows.
struct Statistics {
  std::string source;
  std::string kind;
  std::string type;
  int width;
  int height;
  std::size_t windows;
  std::uint64_t frames;               // sent
  double seconds;                     // from the first frame sent to the last
  TimeHistogram host;                 // time in libUpdate
  TimeHistogram late;                 // delay between due and sent
  std::optional<double> conversions;  // share of the host time
};

void printText(std::ostream& out, const std::vector<Statistics>& all);

// Prints one object on one line. Times are in milliseconds, unknown values are null.
void printJson(std::ostream& out, const std::vector<Statistics>& all);

}  // namespace framesink::play
