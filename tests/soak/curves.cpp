#include "curves.hpp"

#include <algorithm>
#include <array>
#include <iomanip>
#include <sstream>

namespace framesink::test {
namespace {

constexpr std::size_t kFewestSamples = 8;

struct Curve {
  const char* name;
  double Sample::*value;
  double tolerance;
  double toleranceOfLoad = 0;  // added for each load between the second quarter and the last
};

// The 12 KiB for each load are records of display threads, which the C library and SDL keep because
// nobody joins those threads.
constexpr std::array kCurves{
    Curve{"resident KiB", &Sample::kilobytes, 1536, 12},
    Curve{"descriptors", &Sample::descriptors, 1},
    Curve{"threads", &Sample::threads, 1},
    Curve{"X resources", &Sample::xResources, 8},
};

std::optional<double> median(std::vector<double> values) {
  if (values.size() < kFewestSamples) return std::nullopt;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// `placeOf` returns a sample's position in the run or in its load, from 0 to 1.
template <class PlaceOf>
Verdict verdictOn(const Curve& curve, const std::string& servers, const char* quartersOf,
                  double loadsBetween, const std::vector<Sample>& samples, PlaceOf placeOf) {
  std::vector<double> second;
  std::vector<double> last;
  for (const Sample& sample : samples) {
    if (sample.servers != servers) continue;
    const double place = placeOf(sample);
    if (place >= 0.25 && place < 0.5) second.push_back(sample.*curve.value);
    if (place >= 0.75) last.push_back(sample.*curve.value);
  }
  const auto middle = median(second);
  const double tolerance = curve.tolerance + curve.toleranceOfLoad * loadsBetween;
  return {curve.name, servers, quartersOf, middle, median(last), tolerance};
}

}  // namespace

std::optional<Sample> readSample(const std::string& line) {
  std::string words = line;
  std::replace(words.begin(), words.end(), ',', ' ');
  std::istringstream text(words);
  Sample s;
  text >> s.load >> s.age >> s.display >> s.servers >> s.sent >> s.shown >> s.events >> s.opened >>
      s.closedByUser >> s.kilobytes >> s.descriptors >> s.threads;
  return text ? std::optional(s) : std::nullopt;
}

std::string csvHeader() {
  return "load,age,display,servers,sent,shown,events,opened,closed by the user,resident KiB,"
         "descriptors,threads,X resources";
}

std::string csvLine(const Sample& s) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(3) << s.load << ',' << s.age << ',' << s.display << ','
       << s.servers << ',' << s.sent << ',' << s.shown << ',' << s.events << ',' << s.opened << ','
       << s.closedByUser << std::setprecision(0) << ',' << s.kilobytes << ',' << s.descriptors
       << ',' << s.threads << ',' << s.xResources;
  return text.str();
}

std::vector<Verdict> judge(const std::vector<Sample>& samples, const std::string& servers,
                           int loads) {
  std::vector<Verdict> verdicts;
  for (const Curve& curve : kCurves) {
    verdicts.push_back(verdictOn(curve, servers, "the run", loads / 2.0, samples,
                                 [&](const Sample& s) { return (s.load + s.age) / loads; }));
    verdicts.push_back(
        verdictOn(curve, servers, "each load", 0, samples, [](const Sample& s) { return s.age; }));
  }
  return verdicts;
}

}  // namespace framesink::test
