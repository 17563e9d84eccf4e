// What a soak test measures of its host, and whether that grows.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace framesink::test {

// One measurement of the host. The library is loaded several times; `age` is 0 at the beginning of
// a load and 1 at its end.
struct Sample {
  int load = 0;
  double age = 0;
  std::string display;
  std::string servers;
  // Counted since the host started.
  unsigned sent = 0;
  unsigned shown = 0;
  unsigned events = 0;
  unsigned opened = 0;
  unsigned closedByUser = 0;
  // In use when the sample is taken.
  double kilobytes = 0;
  double descriptors = 0;
  double threads = 0;
  double xResources = 0;
};

// Reads a line that the host printed. The host cannot count the X resources; they stay 0.
std::optional<Sample> readSample(const std::string& line);

std::string csvHeader();
std::string csvLine(const Sample& sample);

// One curve for one way of servers. Compares the median of the second quarter with that of the
// last, either of the whole run or of all loads overlaid. The run shows what grows with every load.
// The loads show what grows with every window and is freed by unloading.
struct Verdict {
  std::string curve;
  std::string servers;
  std::string quartersOf;        // "the run" or "each load"
  std::optional<double> second;  // nullopt: too few samples
  std::optional<double> last;
  double tolerance = 0;

  bool isFlat() const { return second && last && *last - *second <= tolerance; }
};

// Judges the samples with that way of servers.
std::vector<Verdict> judge(const std::vector<Sample>& samples, const std::string& servers,
                           int loads);

}  // namespace framesink::test
