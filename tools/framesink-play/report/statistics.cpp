#include "report/statistics.hpp"

#include <array>
#include <cstdio>

namespace framesink::play {
namespace {

std::string number(const char* format, double value) {
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), format, value);
  return text.data();
}

// Frames per second; 0 with fewer than two frames.
double rateOf(const Statistics& of) {
  return of.seconds > 0 ? static_cast<double>(of.frames - 1) / of.seconds : 0;
}

std::string textTimes(const TimeHistogram& times) {
  return number("%.3f ms median, ", times.quantile(kMedian)) +
         number("%.3f ms p99, ", times.quantile(kPercentile99)) +
         number("%.3f ms max", times.quantile(1));
}

std::string jsonTimes(const TimeHistogram& times) {
  return number("{\"median\":%.6f,", times.quantile(kMedian)) +
         number("\"p99\":%.6f,", times.quantile(kPercentile99)) +
         number("\"max\":%.6f}", times.quantile(1));
}

// File names are bytes. A byte that is not printable ASCII becomes one \u00XX escape.
std::string jsonText(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      quoted += {'\\', c};
    } else if (byte < 0x20 || byte >= 0x7f) {
      std::array<char, 8> code;
      std::snprintf(code.data(), code.size(), "\\u%04x", byte);
      quoted += code.data();
    } else {
      quoted += c;
    }
  }
  return quoted + '"';
}

}  // namespace

void printText(std::ostream& out, const std::vector<Statistics>& all) {
  for (const Statistics& of : all) {
    out << of.source << ": " << of.kind << ' ' << of.type << ' ' << of.width << 'x' << of.height
        << ", " << of.windows << (of.windows == 1 ? " window\n" : " windows\n") << "  sent        "
        << of.frames << (of.frames == 1 ? " frame" : " frames") << number(" in %.3f s", of.seconds)
        << number(", %.3f a second\n", rateOf(of)) << "  late        " << textTimes(of.late) << '\n'
        << "  host time   " << textTimes(of.host) << '\n'
        << "  conversion  "
        << (of.conversions ? number("%.0f %% of the host time\n", *of.conversions * 100)
                           : "not measured, too few frames\n");
  }
}

void printJson(std::ostream& out, const std::vector<Statistics>& all) {
  out << "{\"shown\":[";
  const char* comma = "";
  for (const Statistics& of : all) {
    out << comma << "{\"source\":" << jsonText(of.source) << ",\"kind\":" << jsonText(of.kind)
        << ",\"type\":" << jsonText(of.type) << ",\"width\":" << of.width
        << ",\"height\":" << of.height << ",\"windows\":" << of.windows
        << ",\"frames\":" << of.frames << number(",\"seconds\":%.6f", of.seconds)
        << number(",\"fps\":%.6f", rateOf(of)) << ",\"late_ms\":" << jsonTimes(of.late)
        << ",\"host_ms\":" << jsonTimes(of.host)
        << ",\"conversion_share\":" << (of.conversions ? number("%.4f", *of.conversions) : "null")
        << '}';
    comma = ",";
  }
  out << "]}\n";
}

}  // namespace framesink::play
