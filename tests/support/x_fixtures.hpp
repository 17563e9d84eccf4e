// Test fixtures with a real X server.
#pragma once

#include <gtest/gtest.h>

#include "support/window_manager.hpp"
#include "support/x_client.hpp"
#include "support/x_server.hpp"

namespace framesink::test {

// A server, with a window manager or without.
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

// Windows appear where they ask to be, with no frame.
class BareXTest : public XTest {
 protected:
  BareXTest() : XTest(false) {}
};

// As on a user's desktop.
class ManagedXTest : public XTest {
 protected:
  ManagedXTest() : XTest(true) {}
};

}  // namespace framesink::test
