// Test fixtures with a real X server.
#pragma once

#include <gtest/gtest.h>

#include "support/window_manager.hpp"
#include "support/x_client.hpp"
#include "support/x_server.hpp"

namespace framesink::test {

// A server, with or without a window manager.
class XTest : public testing::Test {
 protected:
  explicit XTest(bool managed) {
    if (managed) {
      sharedWindowManager();
    } else {
      endSharedWindowManager();
    }
  }

  XServer& server = sharedXServer();
  XClient x{server.display()};
};

// No window manager: windows appear where they ask to be, without a frame.
class BareXTest : public XTest {
 protected:
  BareXTest() : XTest(false) {}
};

// With a window manager, as on a user's desktop.
class ManagedXTest : public XTest {
 protected:
  ManagedXTest() : XTest(true) {}
};

}  // namespace framesink::test
