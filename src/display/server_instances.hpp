// The two servers of the process: made on first use, ended when the library is unloaded or the
// process exits. Any thread.
#pragma once

#include "display/sdl_server.hpp"

namespace framesink {

SdlServer& threadedServer();
SdlServer& synchronousServer();

// The server that a `synchronous` flag selects.
SdlServer& serverFor(bool synchronous);

// The same, but null when it has not been made yet or has ended: looking up a player makes no
// server.
SdlServer* existingServer(bool synchronous);

// Stops both, for good. False when that cannot be had safely, because Xlib called exit() from inside
// one of our SDL calls, the display thread is stuck, host calls still run, this is a fork, or, on
// Windows, synchronous windows are another thread's or the system has ended all other threads.
bool stopServers();

}  // namespace framesink
