// The two servers of the process: made on first use, ended when the library is unloaded or the
// process exits. Any thread.
#pragma once

#include "display/sdl_server.hpp"

namespace framesink {

SdlServer& threadedServer();
SdlServer& synchronousServer();

// The server that a `synchronous` flag selects.
SdlServer& serverFor(bool synchronous);

// The server that a `synchronous` flag selects, or null if it has not been made yet or has ended.
// Use it to look up a player, because that must not make a server.
SdlServer* existingServer(bool synchronous);

// Stops both servers, for good. Returns false if that is not safe:
//   - Xlib called exit() from inside one of the library's SDL calls.
//   - The display thread is stuck.
//   - Host calls are still under way.
//   - This process is a fork of the host.
//   - On Windows, another thread owns synchronous windows, or the operating system has ended all
//     other threads.
bool stopServers();

}  // namespace framesink
