#include "report/status_line.hpp"

#include <unistd.h>

#include <cstdio>

namespace framesink::play {
namespace {

constexpr std::chrono::milliseconds kRefresh{200};

double secondsBetween(StatusLine::Clock::time_point from, StatusLine::Clock::time_point to) {
  return std::chrono::duration<double>(to - from).count();
}

double rate(std::uint64_t frames, double seconds) {
  return seconds > 0 ? static_cast<double>(frames) / seconds : 0;
}

}  // namespace

StatusLine::StatusLine() : terminal_(isatty(STDERR_FILENO) != 0) {}

// Replaces the live line by the summary.
StatusLine::~StatusLine() {
  if (frames_ == 0) return;
  std::fprintf(stderr, "%sframesink-play: %llu frame%s", terminal_ ? "\r" : "",
               static_cast<unsigned long long>(frames_), frames_ == 1 ? "" : "s");
  if (frames_ > 1) std::fprintf(stderr, ", %.1f fps", wholeRate());
  std::fprintf(stderr, ", host time per frame %.3f ms median, %.3f ms p99%s\n",
               updates_.quantile(kMedian), updates_.quantile(kPercentile99),
               terminal_ ? "\x1b[K" : "");
}

void StatusLine::addFrame() {
  last_ = Clock::now();
  if (frames_++ == 0) first_ = last_;
  lastSecond_.push_back(last_);
  while (lastSecond_.size() > 2 && last_ - lastSecond_.front() > std::chrono::seconds(1)) {
    lastSecond_.pop_front();
  }
}

void StatusLine::refresh() {
  const auto now = Clock::now();
  if (!terminal_ || frames_ == 0 || now < nextRefresh_) return;
  nextRefresh_ = now + kRefresh;
  std::fprintf(stderr, "\r%llu frames  %.1f fps  host %.3f ms median  %.3f ms p99\x1b[K",
               static_cast<unsigned long long>(frames_), recentRate(), updates_.quantile(kMedian),
               updates_.quantile(kPercentile99));
  std::fflush(stderr);
}

double StatusLine::recentRate() const {
  if (lastSecond_.size() < 2) return 0;
  return rate(lastSecond_.size() - 1, secondsBetween(lastSecond_.front(), lastSecond_.back()));
}

double StatusLine::wholeRate() const { return rate(frames_ - 1, secondsBetween(first_, last_)); }

}  // namespace framesink::play
