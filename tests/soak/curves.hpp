// What a soak measures of its host, and whether that grows.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace framesink::test {

// One look at the host. The library is loaded again and again, and each load has its age: 0 at its
// begin, 1 at its end.
struct Sample {
  int load = 0;
  double age = 0;
  std::string display;
  std::string drawing;
  // Since the host's begin.
  unsigned sent = 0;
  unsigned shown = 0;
  unsigned events = 0;
  unsigned opened = 0;
  unsigned closedByUser = 0;
  // At this moment.
  double kilobytes = 0;
  double descriptors = 0;
  double threads = 0;
  double xResources = 0;
};

// A line of the host's, which knows all but the X resources.
std::optional<Sample> readSample(const std::string& line);

std::string csvHeader();
std::string csvLine(const Sample& sample);

// One curve under one way of drawing: the median of the second quarter and that of the last, of the
// whole run or of all loads laid over each other. What grows with every load shows in the one, what
// grows with every window and is given back by unloading in the other.
struct Verdict {
  std::string curve;
  std::string drawing;
  std::string quartersOf;        // "the run" or "each load"
  std::optional<double> second;  // nothing: too few samples
  std::optional<double> last;
  double tolerance = 0;

  bool isFlat() const { return second && last && *last - *second <= tolerance; }
};

// Of the samples that were drawn that way.
std::vector<Verdict> judge(const std::vector<Sample>& samples, const std::string& drawing,
                           int loads);

}  // namespace framesink::test
