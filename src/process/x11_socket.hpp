// The socket of a connection to an X server, below Xlib. Posix only.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace framesink {

// A socket and its identity. A later socket may get the same descriptor, but not the same identity.
struct alignas(8) KnownSocket {
  std::int32_t descriptor = -1;
  std::uint32_t identity = 0;
};

KnownSocket identify(int descriptor);

// True while that socket is open.
bool isThere(const KnownSocket& socket);

// True if the X server is on this computer and not behind a forwarder's port.
bool isLocal(int socket);

// True if the other end has closed the connection. Does not wait.
bool hasHungUp(int socket);

// Closes the connection but keeps the descriptor: every thread that waits for data gets an end of
// file.
void cut(int socket);

// Connects to the same X server a second time, with a greeting that it refuses, so that it never
// counts a client. True if the server reacts within `patience`. Ends early once `giveUp` is true,
// if it is not null.
bool doesServerAnswer(int socket, std::chrono::milliseconds patience,
                      const std::atomic<bool>* giveUp = nullptr);

// The same for the display of that name, if it is a local one: true if somebody accepts connections
// there, but does not react within `patience`.
bool isDisplaySilent(const char* displayName, std::chrono::milliseconds patience);

}  // namespace framesink
