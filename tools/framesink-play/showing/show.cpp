#include "showing/show.hpp"

#include <algorithm>
#include <cmath>

#include "showing/open_source.hpp"
#include "sources/input_file.hpp"
#include "system/failure.hpp"
#include "system/signals.hpp"

namespace framesink::play {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto kRepeat = 33ms;       // between repeats of a held frame in synchronous windows
constexpr auto kForgivable = 250ms;  // longer delays are not caught up
constexpr auto kNever = Clock::time_point::max();

Clock::time_point after(Clock::time_point from, double seconds) {
  if (std::isinf(seconds)) return kNever;
  return from + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

std::unique_ptr<Source> atFirstFrame(std::unique_ptr<Source> source) {
  if (!source->advance()) {
    const std::string trouble = source->trouble();
    throw Failure(kSourceTrouble, trouble.empty() ? "there is nothing to show" : trouble);
  }
  return source;
}

}  // namespace

Show::Show(const Options& options, const Library& library, std::unique_ptr<Source> source,
           StatusLine& status)
    : options_(options),
      status_(status),
      source_(atFirstFrame(std::move(source))),
      views_(openViews(options, library, *source_)) {
  if (!anyOpen()) throw Failure(kNoDisplay, "no display: the library opened no window");
}

void Show::start() {
  start_ = Clock::now();
  end_ = options_.duration ? after(start_, *options_.duration) : kNever;
  due_ = std::min(nextFrame(), end_);
}

bool Show::isOver() const { return phase_ == Phase::kOver || !anyOpen(); }

void Show::step() try { stepPhase(); } catch (const Failure& failure) {
  if (failure.status != kSourceTrouble) throw;
  failure_ = failure.what();
  begin(Phase::kOver, kNever);
}

void Show::stepPhase() {
  switch (phase_) {
    case Phase::kFrames:
      stepFrames();
      break;
    case Phase::kLastFrame:
      holdEnd_ = holdEnd();
      begin(Phase::kHold, Clock::now());
      break;
    case Phase::kHold:
      stepHold();
      break;
    case Phase::kOver:
      break;
  }
}

void Show::begin(Phase phase, Clock::time_point due) {
  phase_ = phase;
  due_ = due;
}

void Show::stepFrames() {
  if (due_ >= end_) return begin(Phase::kLastFrame, due_);
  send();
  const bool enough = frames_ == options_.frames;
  exhausted_ = !enough && !advance();
  if (enough || exhausted_) return begin(Phase::kLastFrame, lastFrameEnd());
  due_ = std::min(nextFrame(), end_);
}

// A synchronous window handles events only inside libUpdate, so its last frame is sent repeatedly.
void Show::stepHold() {
  const auto now = Clock::now();
  if (now >= holdEnd_) return begin(Phase::kOver, kNever);
  if (options_.synchronous) updateWindows();
  due_ = options_.synchronous ? std::min<Clock::time_point>(holdEnd_, now + kRepeat) : holdEnd_;
}

bool Show::advance() {
  if (source_->advance()) return true;
  return options_.loop && startAgain();
}

// Opens the source again for another pass. Images and damaged sources are played once.
bool Show::startAgain() {
  if (passFrames_ <= 1 || !source_->trouble().empty() || stopSignal() != 0) return false;
  passBegin_ += source_->time() + source_->interval();
  passFrames_ = 0;
  auto again = atFirstFrame(openSource(options_));
  if (again->width() != source_->width() || again->height() != source_->height()) {
    failFor(options_.source, "its size has changed");
  }
  source_ = std::move(again);
  return true;
}

Clock::time_point Show::nextFrame() {
  const auto now = Clock::now();
  const double rate = options_.rate.value_or(0);
  if (std::isinf(rate)) return now;
  const double offset =
      rate > 0 ? static_cast<double>(frames_) / rate : passBegin_ + source_->time();
  const auto due = after(start_, offset);
  if (now - due <= kForgivable) return due;
  start_ += now - due;
  return now;
}

// The last frame stays for one interval, like any other frame.
Clock::time_point Show::lastFrameEnd() const {
  const double rate = options_.rate.value_or(1 / source_->interval());
  return std::min(end_, after(Clock::now(), 1 / rate));
}

Clock::time_point Show::holdEnd() const {
  if (options_.hold) return after(Clock::now(), *options_.hold);
  const bool image = exhausted_ && passFrames_ == 1 && !options_.frames;
  return image && source_->trouble().empty() ? end_ : Clock::now();
}

std::vector<Statistics> Show::statistics() const {
  std::vector<Statistics> all;
  for (const View& view : views_) {
    const InputDescription description = view.planes.description();
    all.push_back({.source = options_.source.empty() ? "model" : options_.source,
                   .kind = infoOf(view.planes.kind()).name,
                   .type = view.planes.type().name,
                   .width = static_cast<int>(description.widths[0]),
                   .height = static_cast<int>(description.heights[0]),
                   .windows = view.windows.size(),
                   .frames = frames_,
                   .seconds = std::chrono::duration<double>(lastSent_ - firstSent_).count(),
                   .host = view.hostTimes,
                   .late = late_,
                   .conversions = view.twin ? view.twin->share() : std::nullopt});
  }
  return all;
}

void Show::send() {
  for (View& view : views_) source_->fill(view.planes);
  lastSent_ = Clock::now();
  if (frames_ == 0) firstSent_ = lastSent_;
  late_.add(lastSent_ - due_);
  updateWindows();
  status_.addFrame();
  ++frames_;
  ++passFrames_;
}

void Show::updateWindows() {
  for (View& view : views_) {
    for (const auto& window : view.windows) {
      if (!window->isOpen()) continue;
      const auto spent = update(view, *window);
      status_.addUpdate(spent);
      view.hostTimes.add(spent);
    }
  }
}

Show::Clock::duration Show::update(View& view, BlockWindow& window) {
  if (view.twin && &window == view.windows.front().get()) {
    return view.twin->update(window, view.planes);
  }
  return window.update(view.planes);
}

bool Show::anyOpen() const {
  return std::ranges::any_of(views_, [](const View& view) {
    return std::ranges::any_of(view.windows, [](const auto& window) { return window->isOpen(); });
  });
}

}  // namespace framesink::play
