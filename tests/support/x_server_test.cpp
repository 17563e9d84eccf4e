#include "support/x_server.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "support/plain_window.hpp"
#include "support/window_manager.hpp"
#include "support/x_client.hpp"

namespace framesink::test {
namespace {

using namespace std::chrono_literals;

std::string messageOf(const std::function<void()>& failing) {
  try {
    failing();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "";
}

// Replaces a program in PATH by one that only writes "the reason" to stderr.
class BrokenProgram {
 public:
  explicit BrokenProgram(const std::string& name) : path_("PATH", folder_.path()) {
    const std::string program = folder_.path() + "/" + name;
    std::ofstream(program) << "#!/bin/sh\necho the reason >&2\nexit 1\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  }

 private:
  TemporaryFolder folder_;
  ScopedVariable path_;
};

TEST(XServer, NamesItselfInTheEnvironmentForItsLifetime) {
  const ScopedVariable display("DISPLAY", ":12345");
  const ScopedVariable wayland("WAYLAND_DISPLAY", "wayland-9");
  const ScopedVariable driver("SDL_VIDEODRIVER", std::nullopt);
  {
    const XServer server;
    EXPECT_EQ(environmentVariable("DISPLAY"), server.display());
    EXPECT_EQ(environmentVariable("WAYLAND_DISPLAY"), std::nullopt);
    EXPECT_EQ(environmentVariable("SDL_VIDEODRIVER"), "x11");
    EXPECT_EQ(XClient().screenGeometry(), (Geometry{0, 0, 1280, 1024}));
  }
  EXPECT_EQ(environmentVariable("DISPLAY"), ":12345");
  EXPECT_EQ(environmentVariable("WAYLAND_DISPLAY"), "wayland-9");
  EXPECT_EQ(environmentVariable("SDL_VIDEODRIVER"), std::nullopt);
}

TEST(XServer, HasTheSizeAskedFor) {
  const XServer server({640, 360});
  XClient client;
  EXPECT_EQ(client.screenGeometry(), (Geometry{0, 0, 640, 360}));
  EXPECT_EQ(client.rootPixels().pixels.size(), 640U * 360U);
}

TEST(XServer, SharesTheMachineWithOthers) {
  const XServer first;
  const XServer second;
  EXPECT_NE(first.display(), second.display());
  EXPECT_NO_THROW(XClient{first.display()});
  EXPECT_NO_THROW(XClient{second.display()});
}

// Compares the socket's change times, because another server may immediately reuse its path.
TEST(XServer, LeavesNoSocketBehind) {
  std::string path;
  struct stat socket {};
  {
    const XServer server;
    path = "/tmp/.X11-unix/X" + server.display().substr(1);
    ASSERT_EQ(stat(path.c_str(), &socket), 0);
  }
  struct stat later {};
  EXPECT_TRUE(stat(path.c_str(), &later) != 0 || later.st_ctim.tv_nsec != socket.st_ctim.tv_nsec);
}

TEST(XServer, SaysThatXvfbIsMissing) {
  const ScopedVariable path("PATH", "/nowhere");
  EXPECT_NE(messageOf([] { XServer server; }).find("cannot start Xvfb"), std::string::npos);
}

TEST(XServer, SaysWhyXvfbEnded) {
  const BrokenProgram broken("Xvfb");
  EXPECT_EQ(messageOf([] { XServer server; }), "Xvfb ended at its start: the reason\n");
}

TEST(XServer, SharedOneComesBackAfterItsDeath) {
  const std::string display = sharedXServer().display();
  const pid_t pid = sharedXServer().pid();
  EXPECT_EQ(sharedXServer().pid(), pid);
  kill(pid, SIGKILL);
  ASSERT_TRUE(waitUntil([&] { return sharedXServer().pid() != pid; }));
  EXPECT_EQ(environmentVariable("DISPLAY"), sharedXServer().display());
  EXPECT_TRUE(sharedXServer().isRunning());
}

TEST(WindowManager, IsThereForItsLifetime) {
  const XServer server;
  XClient client;
  EXPECT_FALSE(client.hasWindowManager());
  {
    WindowManager manager(server);
    EXPECT_TRUE(client.hasWindowManager());
    EXPECT_TRUE(manager.isRunning());
  }
  EXPECT_TRUE(waitUntil([&] { return !client.hasWindowManager(); }));
}

TEST(WindowManager, IsNotTakenForAliveAfterItsDeath) {
  const XServer server;
  const WindowManager manager(server);
  XClient client;
  kill(manager.pid(), SIGKILL);
  EXPECT_TRUE(waitUntil([&] { return !client.hasWindowManager(); }));
}

TEST(WindowManager, SaysThatOpenboxIsMissing) {
  const XServer server;
  const ScopedVariable path("PATH", "/nowhere");
  EXPECT_NE(messageOf([&] { WindowManager manager(server); }).find("cannot start openbox"),
            std::string::npos);
}

TEST(WindowManager, SaysWhyOpenboxEnded) {
  const XServer server;
  const BrokenProgram broken("openbox");
  EXPECT_EQ(messageOf([&] { WindowManager manager(server); }),
            "openbox ended at its start: the reason\n");
}

TEST(WindowManager, RefusesToBeTheSecond) {
  const XServer server;
  const WindowManager first(server);
  EXPECT_EQ(messageOf([&] { WindowManager second(server); }),
            "a window manager runs on " + server.display() + " already");
}

TEST(WindowManager, AnswersNobodyWhileItHangs) {
  const XServer server;
  WindowManager manager(server);
  XClient client;
  const PlainWindow window("plain");
  client.waitForWindow("plain");
  const auto isIconified = [&] { return client.isIconified(window.id()); };
  manager.hang();
  client.iconify(window.id());
  EXPECT_FALSE(waitUntil(isIconified, 50ms));
  manager.wake();
  EXPECT_TRUE(waitUntil(isIconified));
}

// openbox grabs the server while it starts to manage a window.
TEST(WindowManager, HangsWithoutTheServer) {
  const XServer server;
  WindowManager manager(server);
  XClient client;
  for (int moment = 0; moment < 40; ++moment) {
    const PlainWindow window("new");
    std::this_thread::sleep_for(moment * 100us);
    manager.hang();
    EXPECT_EQ(client.findWindow("new"), window.id());
    manager.wake();
    client.waitForWindow("new");
  }
}

TEST(SharedWindowManager, IsOneUntilItIsEnded) {
  const pid_t pid = sharedWindowManager().pid();
  EXPECT_EQ(sharedWindowManager().pid(), pid);
  XClient client;
  EXPECT_TRUE(client.hasWindowManager());
  endSharedWindowManager();
  EXPECT_TRUE(waitUntil([&] { return !client.hasWindowManager(); }));
  EXPECT_NE(sharedWindowManager().pid(), pid);
}

TEST(SharedWindowManager, IsStartedAgainAfterItsDeath) {
  const pid_t pid = sharedWindowManager().pid();
  kill(pid, SIGKILL);
  XClient client;
  ASSERT_TRUE(waitUntil([&] { return !client.hasWindowManager(); }));
  ASSERT_TRUE(waitUntil([&] { return sharedWindowManager().pid() != pid; }));
  EXPECT_TRUE(client.hasWindowManager());
}

}  // namespace
}  // namespace framesink::test
