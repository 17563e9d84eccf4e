// What --stats tells at the end.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "report/time_histogram.hpp"

namespace framesink::play {

// Of frames of one kind and type, over all their windows.
struct Statistics {
  std::string source;
  std::string kind;
  std::string type;
  int width;
  int height;
  std::size_t windows;
  std::uint64_t frames;               // sent
  double seconds;                     // from the first frame sent to the last
  TimeHistogram host;                 // what libUpdate took
  TimeHistogram late;                 // how long after they were due frames were sent
  std::optional<double> conversions;  // their share of the host time
};

void printText(std::ostream& out, const std::vector<Statistics>& all);

// One object in one line, its times in milliseconds; what is not known is null.
void printJson(std::ostream& out, const std::vector<Statistics>& all);

}  // namespace framesink::play
