// Obeys the commands open, picture, churn and exit of display_host.
#include "peer_host.hpp"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "command_lines.h"

namespace framesink::test {

unsigned char PeerPicture::sample(int plane, unsigned row, unsigned column) const {
  return sampleOf(plane, row, column, number);
}

namespace {

struct View {
  PeerPicture picture;
  std::unique_ptr<PeerWindow> window;
};

std::map<std::string, View> views;
bool churning = false;
unsigned cycles = 0;

void answer(const char* text) {
  std::printf("= %s\n", text);
  std::fflush(stdout);
}

void open(const char* words) {
  char name[64];
  unsigned synchronous, width, height, x, y;
  if (std::sscanf(words, "%63s %u %u %u %u %u", name, &synchronous, &width, &height, &x, &y) != 6) {
    std::exit(3);
  }
  const PeerPicture picture{width, height, 1};
  views[name] = {picture,
                 PeerWindow::open(name, static_cast<int>(x), static_cast<int>(y), picture)};
}

void obey(const std::string& line) {
  const std::string name = line.substr(0, line.find(' '));
  const char* const words = line.c_str() + std::min(line.size(), name.size() + 1);
  // Without exit handlers, because what they do is no affair of displays.
  if (name == "exit") std::_Exit(std::atoi(words));
  if (name == "open") open(words);
  if (name == "churn") churning = std::string(words) != "0 0";
  for (auto& [title, view] : views) {
    if (name == "picture") view.picture.number = static_cast<unsigned>(std::atoi(words));
  }
  answer("done");
}

void step() {
  for (auto& [title, view] : views) view.window->show(view.picture);
  if (!churning) return;
  const PeerPicture picture{64 + cycles % 2, 48, 1};
  PeerWindow::open("churn", 500, 20, picture)->show(picture);
  ++cycles;
}

}  // namespace
}  // namespace framesink::test

int main() {
  using namespace framesink::test;
  answer("ready");
  for (;;) {
    const char* const line = nextCommand(10);
    if (line) obey(line);
    step();
  }
}
