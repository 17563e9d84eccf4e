#include "support/window_manager.hpp"

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

// Asks the window manager for the frame that an unmapped window would get. Its property is up long
// before its event loop runs, and what arrives in between may lie unnoticed until the next event.
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

std::optional<WindowManager>& sharedInstance() {
  static std::optional<WindowManager> manager;
  return manager;
}

}  // namespace

WindowManager::WindowManager(const XServer& server) {
  XClient client(server.display());
  if (client.hasWindowManager()) {
    throw std::runtime_error("a window manager runs on " + server.display() + " already");
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

WindowManager& sharedWindowManager() {
  XServer& server = sharedXServer();
  std::optional<WindowManager>& manager = sharedInstance();
  if (manager && !manager->isRunning()) manager.reset();
  return manager ? *manager : manager.emplace(server);
}

void endSharedWindowManager() { sharedInstance().reset(); }

}  // namespace framesink::test
