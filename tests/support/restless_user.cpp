#include "support/restless_user.hpp"

#include <utility>

namespace framesink::test {

RestlessUser::RestlessUser(const std::string& display, std::vector<std::string> titles,
                           Habits habits)
    : titles_(std::move(titles)),
      habits_(std::move(habits)),
      random_(habits_.seed),
      thread_([this, display] { work(display); }) {}

RestlessUser::~RestlessUser() {
  stop_ = true;
  thread_.join();
}

// Searches only for a window that is gone, because a search grabs the server and slows windows
// down.
void RestlessUser::work(const std::string& display) {
  XClient x(display);
  std::vector<Window> windows(titles_.size(), kNoWindow);
  while (!stop_) {
    std::this_thread::sleep_for(habits_.pace);
    if (isCalm()) continue;
    const std::size_t index = random_() % titles_.size();
    Window& window = windows[index];
    if (!x.exists(window)) window = x.findWindow(titles_[index]).value_or(kNoWindow);
    if (window != kNoWindow) act(x, window);
  }
}

bool RestlessUser::isCalm() const {
  if (habits_.storm.count() == 0) return false;
  return (std::chrono::steady_clock::now() - start_) / habits_.storm % 2 == 1;
}

void RestlessUser::act(XClient& x, Window window) {
  switch (habits_.deeds[random_() % habits_.deeds.size()]) {
    case Deed::kClose:
      if (x.closeButton(window)) ++closed_;
      break;
    case Deed::kRaise:
      x.raise(window);
      break;
    case Deed::kMove:
      x.move(window, number(800), number(600));
      break;
    case Deed::kResize:
      x.resize(window, 20 + number(300), 20 + number(300));
      break;
    case Deed::kMaximise:
      x.maximise(window);
      break;
    case Deed::kIconify:
      x.iconify(window);
      break;
    case Deed::kRestore:
      x.restore(window);
      break;
    case Deed::kEscape:
      x.pressKey(window, "Escape");
      break;
    case Deed::kCover:
      if (!x.uncover()) x.cover(window);
      break;
  }
  ++deeds_;
}

}  // namespace framesink::test
