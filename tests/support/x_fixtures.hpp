// Test fixtures with a real X server.
#pragma once

#include <gtest/gtest.h>

#include "support/window_manager.hpp"
#include "support/x_client.hpp"
#include "support/x_server.hpp"

namespace framesink::test {

// A server without a window manager: windows appear where they ask to be, with no frame.
class BareXTest : public testing::Test {
 protected:
  XServer& server = sharedXServer();
  XClient x{server.display()};
};

// A server with a window manager, as on a user's desktop.
class ManagedXTest : public BareXTest {
 protected:
  WindowManager windowManager{server};
};

}  // namespace framesink::test
