// soak [--minutes N] [--csv FILE] [--leak descriptor|memory|window]: runs a host with eight windows
// and a restless user on two X servers, one of them with a window manager. Exits with 1 if the
// host's resources grow, if it fails or if it hangs.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <optional>
#include <string>

#include "curves.hpp"
#include "support/child_process.hpp"
#include "support/restless_user.hpp"
#include "support/window_manager.hpp"
#include "support/x_resources.hpp"
#include "support/x_server.hpp"

namespace framesink::test {
namespace {

using namespace std::chrono_literals;

constexpr ScreenSize kScreen{800, 600};
constexpr auto kLongestSilence = 60s;  // unloading alone may take 20 s
constexpr auto kLook = 50ms;

struct Options {
  double minutes = 2;
  std::string csv;
  std::string leak = "none";

  // A multiple of 8, so that each quarter of a part has two loads or more.
  int loads() const { return 8 * std::max(1, static_cast<int>(minutes / 15)); }
};

// Each part has a separate host process, so that growth in one is not hidden by another.
struct Part {
  const char* servers;
  double share;  // of the test's time
};

constexpr std::array kParts{
    Part{"both", 0.5},
    Part{"threaded", 0.25},
    Part{"synchronous", 0.25},
};

std::vector<std::string> titles() {
  std::vector<std::string> titles;
  for (int i = 0; i < 8; ++i) titles.push_back("soak " + std::to_string(i));
  return titles;
}

Habits habitsFor(int load) {
  return {.deeds = {Deed::kClose, Deed::kRaise, Deed::kMove, Deed::kMove, Deed::kResize,
                    Deed::kResize, Deed::kMaximise, Deed::kIconify, Deed::kRestore, Deed::kRestore,
                    Deed::kEscape, Deed::kCover},
          .pace = 10ms,
          .storm = 1s,
          .seed = static_cast<std::uint32_t>(load)};
}

class Soak {
 public:
  explicit Soak(const Options& options) : options_(options) {}

  bool run() {
    const bool ended =
        std::all_of(kParts.begin(), kParts.end(), [this](const Part& part) { return play(part); });
    if (!options_.csv.empty()) writeCsv();
    tellFigures();
    return tellVerdicts() && ended;
  }

 private:
  bool play(const Part& part) {
    const double seconds = options_.minutes * 60 * part.share / options_.loads();
    ChildProcess host({SOAK_HOST, FRAMESINK_LIBRARY, std::to_string(options_.loads()),
                       std::to_string(seconds), bare_.display(), managed_.display(), part.servers,
                       options_.leak});
    watch(host);
    user_.reset();
    return endsWell(host);
  }

  // Reads the host's output until the host ends or prints nothing for too long.
  void watch(ChildProcess& host) {
    auto heard = std::chrono::steady_clock::now();
    std::size_t read = 0;
    for (bool isRunning = true; isRunning;) {
      std::this_thread::sleep_for(kLook);
      isRunning = host.isRunning();
      const std::string output = host.standardOutput();
      for (std::size_t end; (end = output.find('\n', read)) != std::string::npos; read = end + 1) {
        take(output.substr(read, end - read), host.pid());
        heard = std::chrono::steady_clock::now();
      }
      if (std::chrono::steady_clock::now() > heard + kLongestSilence) return;
    }
  }

  void take(const std::string& line, pid_t host) {
    std::optional<Sample> sample = readSample(line);
    if (!sample) return;
    const bool isManaged = sample->display == managed_.display();
    sample->display = isManaged ? "openbox" : "bare";
    if (!isOfTheSameLoad(*sample)) {
      user_.reset();
      user_.emplace((isManaged ? managed_ : bare_).display(), titles(), habitsFor(sample->load));
      tellProgress(*sample);
    }
    sample->xResources =
        static_cast<double>(countXResources(isManaged ? managedEyes_ : bareEyes_, host));
    samples_.push_back(*sample);
  }

  bool isOfTheSameLoad(const Sample& sample) const {
    return !samples_.empty() && samples_.back().load == sample.load &&
           samples_.back().servers == sample.servers;
  }

  void tellProgress(const Sample& sample) const {
    std::fprintf(stderr,
                 "soak: %s, %s, load %d of %d: %u frames sent, %u windows closed by the user, "
                 "%.0f KiB\n",
                 sample.servers.c_str(), sample.display.c_str(), sample.load + 1, options_.loads(),
                 sample.sent, sample.closedByUser, sample.kilobytes);
  }

  static bool endsWell(ChildProcess& host) {
    const auto status = host.wait(0ms);
    std::fputs(host.standardError().c_str(), stderr);
    if (status == ExitStatus{.code = 0}) return host.standardError().empty();
    if (status) {
      std::printf("FAILED: the host ended with status %d, signal %d\n", status->code,
                  status->signal);
    } else {
      std::puts("FAILED: the host hangs");
    }
    return false;
  }

  void writeCsv() const {
    std::ofstream file(options_.csv);
    file << csvHeader() << '\n';
    for (const Sample& sample : samples_) file << csvLine(sample) << '\n';
  }

  void tellFigures() const {
    for (std::size_t i = 0; i < samples_.size(); ++i) {
      const Sample& s = samples_[i];
      if (i + 1 < samples_.size() && samples_[i + 1].servers == s.servers) continue;
      std::printf(
          "%-18s  %u frames sent, %u pictures shown, %u events, %u windows opened, %u closed "
          "by the user, %d loads\n",
          s.servers.c_str(), s.sent, s.shown, s.events, s.opened, s.closedByUser, s.load + 1);
    }
  }

  bool tellVerdicts() const {
    bool areFlat = true;
    for (const Part& part : kParts) {
      for (const Verdict& v : judge(samples_, part.servers, options_.loads())) {
        tell(v);
        areFlat = areFlat && v.isFlat();
      }
    }
    return areFlat;
  }

  void tell(const Verdict& v) const {
    const char* word = v.isFlat() ? "flat" : "NOT FLAT";
    std::printf("%-12s  %-18s  quarters of %-9s  second %8.0f  last %8.0f  may grow by %5.0f  %s\n",
                v.curve.c_str(), v.servers.c_str(), v.quartersOf.c_str(), v.second.value_or(-1),
                v.last.value_or(-1), v.tolerance, word);
  }

  const Options options_;
  XServer bare_{kScreen};
  XServer managed_{kScreen};
  WindowManager manager_{managed_};
  XConnection bareEyes_{bare_.display()};
  XConnection managedEyes_{managed_.display()};
  std::optional<RestlessUser> user_;
  std::vector<Sample> samples_;
};

std::optional<Options> readOptions(int count, char** arguments) {
  Options options;
  for (int i = 1; i < count; i += 2) {
    const std::string name = arguments[i];
    if (i + 1 == count) return std::nullopt;
    const std::string value = arguments[i + 1];
    if (name == "--minutes") {
      options.minutes = std::atof(value.c_str());
    } else if (name == "--csv") {
      options.csv = value;
    } else if (name == "--leak") {
      options.leak = value;
    } else {
      return std::nullopt;
    }
  }
  return options.minutes > 0 ? std::optional(options) : std::nullopt;
}

}  // namespace
}  // namespace framesink::test

int main(int count, char** arguments) {
  const auto options = framesink::test::readOptions(count, arguments);
  if (!options) {
    std::fputs("usage: soak [--minutes N] [--csv FILE] [--leak descriptor|memory|window]\n",
               stderr);
    return 2;
  }
  try {
    return framesink::test::Soak(*options).run() ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "soak: %s\n", error.what());
    return 1;
  }
}
