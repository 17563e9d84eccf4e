// A window manager for an XServer.
#pragma once

#include <optional>
#include <string>

#include "support/child_process.hpp"
#include "support/temporary_folder.hpp"

namespace framesink::test {

class XServer;

// Runs openbox with one desktop, without key bindings and without the user's configuration. Destroy
// it before its server.
class WindowManager {
 public:
  // Throws std::runtime_error with the reason if openbox is missing, is not ready within 20 s, or
  // if another window manager runs already.
  explicit WindowManager(const XServer& server);

  pid_t pid() const { return process_->pid(); }
  bool isRunning() { return process_->isRunning(); }

  // Stops the process as if it hung, at a moment when it has not grabbed the X server; otherwise
  // the server would answer nobody. Throws std::runtime_error if there is no such moment within 10
  // s.
  void hang();
  void wake() { process_->signal(SIGCONT); }

 private:
  void stop();

  std::string display_;
  TemporaryFolder folder_;
  std::optional<ChildProcess> process_;
};

// The window manager of this test process on sharedXServer(). It is started at the first call, and
// again after it ended. It outlives everything that the process makes after that call: if it ended
// while windows are open, SDL 2.26 might ask for the position of a frame that is gone, and Xlib
// would end the process (BadWindow, X_TranslateCoords).
WindowManager& sharedWindowManager();

// Ends it, for a test without a window manager after one with it in the same process.
void endSharedWindowManager();

}  // namespace framesink::test
