#include "support/window_manager.hpp"

#include <sys/wait.h>
#include <xcb/xcbext.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "support/x_client.hpp"
#include "support/x_server.hpp"

namespace framesink::test {
namespace {

constexpr const char* kConfiguration = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <theme><name>Clearlooks</name><animateIconify>no</animateIconify></theme>
  <desktops><number>1</number></desktops>
  <keyboard/>
</openbox_config>
)";

std::string writeConfiguration(const std::string& folder) {
  const std::string path = folder + "/rc.xml";
  std::ofstream(path) << kConfiguration;
  return path;
}

ChildOptions optionsFor(const XServer& server, const std::string& folder) {
  return {.environment = {"DISPLAY=" + server.display(), "XDG_CONFIG_HOME=" + folder,
                          "XDG_DATA_HOME=" + folder, "XDG_CACHE_HOME=" + folder},
          .endSignal = SIGTERM};
}

// Asks the window manager which frame an unmapped window would get. The window manager announces
// itself long before its event loop runs, and may not read an event that arrives in between until
// the next one comes.
class Probe {
 public:
  explicit Probe(XClient& client) : x_(client.connection()), window_(xcb_generate_id(x_.raw())) {
    x_.check(xcb_create_window_checked(x_.raw(), XCB_COPY_FROM_PARENT, window_, x_.root(), 0, 0, 1,
                                       1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0,
                                       nullptr));
  }

  bool isAnswered() {
    x_.sendMessage(x_.root(), window_, "_NET_REQUEST_FRAME_EXTENTS", {});
    return waitUntil([&] { return !x_.items(window_, "_NET_FRAME_EXTENTS").empty(); },
                     std::chrono::milliseconds(20));
  }

 private:
  XConnection& x_;
  Window window_;
};

// Asks several times, because the server may answer this client before it reads the grab that the
// stopped process had requested.
bool serves(XConnection& x) {
  constexpr int kAnswers = 5;
  for (int i = 0; i < kAnswers; ++i) {
    const xcb_get_input_focus_cookie_t asked = xcb_get_input_focus(x.raw());
    xcb_flush(x.raw());
    void* answer = nullptr;
    const auto isHere = [&] {
      return xcb_poll_for_reply(x.raw(), asked.sequence, &answer, nullptr) == 1;
    };
    if (!waitUntil(isHere, std::chrono::milliseconds(100))) return false;
    std::free(answer);
  }
  return true;
}

std::optional<WindowManager>& sharedInstance() {
  static std::optional<WindowManager> manager;
  return manager;
}

}  // namespace

WindowManager::WindowManager(const XServer& server) : display_(server.display()) {
  XClient client(display_);
  if (client.hasWindowManager()) {
    throw std::runtime_error("a window manager runs on " + display_ + " already");
  }
  const std::vector<std::string> command{"openbox", "--config-file",
                                         writeConfiguration(folder_.path()), "--sm-disable"};
  process_.emplace(command, optionsFor(server, folder_.path()));
  Probe probe(client);
  const auto ready = [&] { return client.hasWindowManager() && probe.isAnswered(); };
  waitUntil([&] { return ready() || !isRunning(); }, std::chrono::seconds(20));
  if (ready()) return;
  const std::string how = isRunning() ? "is not ready after 20 s" : "ended at its start";
  throw std::runtime_error("openbox " + how + ": " + process_->standardError());
}

void WindowManager::stop() {
  process_->signal(SIGSTOP);
  siginfo_t state{};
  const auto stopped = [&] {
    return waitid(P_PID, static_cast<id_t>(pid()), &state, WSTOPPED | WNOHANG) == 0 &&
           state.si_pid == pid();
  };
  if (!waitUntil(stopped)) throw std::runtime_error("openbox cannot be stopped");
}

void WindowManager::hang() {
  const auto hung = [&] {
    XConnection x(display_);
    stop();
    if (serves(x)) return true;
    wake();
    return false;
  };
  if (!waitUntil(hung)) throw std::runtime_error("openbox has the X server grabbed all the time");
}

WindowManager& sharedWindowManager() {
  XServer& server = sharedXServer();
  std::optional<WindowManager>& manager = sharedInstance();
  if (manager && !manager->isRunning()) manager.reset();
  return manager ? *manager : manager.emplace(server);
}

void endSharedWindowManager() { sharedInstance().reset(); }

}  // namespace framesink::test
