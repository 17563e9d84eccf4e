// Whether the X server sees the memory that this process shares with it. A server that does not
// share this process's IPC namespace may attach a foreign segment of the same number without an
// error, and would then show foreign memory.
#pragma once

#include "process/xlib.hpp"

namespace framesink {

// Draws a pattern through shared memory and reads it back. If the X server does not see it, makes
// every later attachment on this connection fail, so that SDL sends its pictures through the
// connection instead. Errors on the connection must not end the process meanwhile.
void avoidForeignMemory(const Xlib& xlib, Display* display);

}  // namespace framesink
