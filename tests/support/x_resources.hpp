// Counts what a client has allocated in an X server.
#pragma once

#include <sys/types.h>

#include <cstddef>

#include "support/x_connection.hpp"

namespace framesink::test {

// Counts windows, pixmaps, graphics contexts, cursors and everything else that the server keeps for
// the clients of that process, except colour maps: SDL 2.26 frees those only when it is shut down,
// one for each window, three under OpenGL. Returns 0 if the process has no client.
std::size_t countXResources(XConnection& x, pid_t process);

}  // namespace framesink::test
