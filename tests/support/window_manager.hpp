// A window manager for an XServer.
#pragma once

#include <optional>
#include <string>

#include "support/child_process.hpp"
#include "support/temporary_folder.hpp"

namespace framesink::test {

class XServer;

// Runs openbox with one desktop, without key bindings and without any configuration of the user's.
// Must go before its server does.
class WindowManager {
 public:
  // Throws std::runtime_error with the reason when openbox is missing, is not ready within 20 s or
  // would be the second window manager.
  explicit WindowManager(const XServer& server);

  pid_t pid() const { return process_->pid(); }
  bool isRunning() { return process_->isRunning(); }

  // Stops it as a fault of its own would, but at a moment when it has not grabbed the X server, which
  // would then answer nobody. Throws std::runtime_error when none came within 10 s.
  void hang();
  void wake() { process_->signal(SIGCONT); }

 private:
  void stop();

  std::string display_;
  TemporaryFolder folder_;
  std::optional<ChildProcess> process_;
};

// The window manager of this test process on sharedXServer(), started at the first call and again
// after it ended. It outlives whatever the process makes after that call: when it goes while
// windows are open, SDL 2.26 may ask for the place of a frame that is gone, and Xlib ends the
// process for that (BadWindow, X_TranslateCoords).
WindowManager& sharedWindowManager();

// Ends it, for a test that wants none after one that did, in one process.
void endSharedWindowManager();

}  // namespace framesink::test
