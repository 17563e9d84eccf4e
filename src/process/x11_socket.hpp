// The socket of a connection to an X server, below Xlib. Posix only.
#pragma once

#include <chrono>

namespace framesink {

// True if the other end has closed the connection. Does not wait.
bool hasHungUp(int socket);

// Closes the connection but keeps the descriptor: every thread that waits for data gets an end of
// file.
void cut(int socket);

// Connects to the same X server a second time and asks for a session, without authorisation. True
// if the server reacts in any way, such as by a refusal, within `patience`.
bool doesServerAnswer(int socket, std::chrono::milliseconds patience);

}  // namespace framesink
