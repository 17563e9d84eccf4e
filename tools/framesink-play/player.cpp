#include "player.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>

#include "failure.hpp"
#include "open_source.hpp"
#include "signals.hpp"

namespace framesink::play {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto kNap = 50ms;          // at most, between looks at windows and signals
constexpr auto kRepeat = 33ms;       // between repeats of a held frame
constexpr auto kForgivable = 250ms;  // a longer delay is not caught up with
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

Player::Player(const Options& options, const Library& library, std::unique_ptr<Source> source)
    : options_(options),
      source_(atFirstFrame(std::move(source))),
      views_(openViews(options, library, *source_)),
      begin_(Clock::now()),
      end_(options.duration ? after(begin_, *options.duration) : kNever),
      start_(begin_) {
  if (!anyOpen()) throw Failure(kNoDisplay, "no display: the library opened no window");
}

void Player::run() {
  if (playFrames()) hold();
}

// True when the source ended or came to the limits that the user set, with windows still open.
bool Player::playFrames() {
  while (true) {
    const auto due = dueTime();
    if (!waitUntil(std::min(due, end_))) return false;
    if (due >= end_) return true;
    send();
    if (status_.frames() == options_.frames) break;
    exhausted_ = !advance();
    if (exhausted_) break;
  }
  return waitUntil(lastFrameEnd());
}

// Synchronous windows live only while they are sent something.
void Player::hold() {
  const auto end = holdEnd();
  while (waitUntil(std::min(end, Clock::now() + kRepeat)) && Clock::now() < end) {
    if (options_.synchronous) updateWindows();
  }
}

bool Player::advance() {
  if (source_->advance()) return true;
  return options_.loop && startAgain();
}

// Opens the source anew for another pass. An image stands still, and what is damaged is not shown
// twice.
bool Player::startAgain() {
  if (passFrames_ <= 1 || !source_->trouble().empty() || stopSignal() != 0) return false;
  passBegin_ += source_->time() + source_->interval();
  passFrames_ = 0;
  auto again = atFirstFrame(openSource(options_));
  if (again->width() != source_->width() || again->height() != source_->height()) {
    throw Failure(kSourceTrouble, options_.source + ": its size has changed");
  }
  source_ = std::move(again);
  return true;
}

Clock::time_point Player::dueTime() {
  const auto now = Clock::now();
  const double rate = options_.rate.value_or(0);
  if (std::isinf(rate)) return now;
  const double offset =
      rate > 0 ? static_cast<double>(status_.frames()) / rate : passBegin_ + source_->time();
  const auto due = after(start_, offset);
  if (now - due <= kForgivable) return due;
  start_ += now - due;
  return now;
}

// The last frame is shown for as long as any other.
Clock::time_point Player::lastFrameEnd() const {
  const double rate = options_.rate.value_or(1 / source_->interval());
  return std::min(end_, after(Clock::now(), 1 / rate));
}

Clock::time_point Player::holdEnd() const {
  if (options_.hold) return after(Clock::now(), *options_.hold);
  const bool image = exhausted_ && passFrames_ == 1 && !options_.frames;
  return image && source_->trouble().empty() ? end_ : Clock::now();
}

void Player::send() {
  for (View& view : views_) {
    source_->fill(view.planes);
  }
  updateWindows();
  status_.addFrame();
  ++passFrames_;
}

void Player::updateWindows() {
  for (View& view : views_) {
    for (const auto& window : view.windows) {
      if (!window->isOpen()) continue;
      const auto before = Clock::now();
      window->update(view.planes);
      status_.addUpdate(Clock::now() - before);
    }
  }
}

bool Player::anyOpen() const {
  return std::ranges::any_of(views_, [](const View& view) {
    return std::ranges::any_of(view.windows, [](const auto& window) { return window->isOpen(); });
  });
}

// False when the show is over before that: all windows closed, or a signal came.
bool Player::waitUntil(Clock::time_point when) {
  while (stopSignal() == 0 && anyOpen()) {
    status_.refresh();
    const auto now = Clock::now();
    if (now >= when) return true;
    std::this_thread::sleep_until(std::min<Clock::time_point>(when, now + kNap));
  }
  return false;
}

}  // namespace framesink::play
