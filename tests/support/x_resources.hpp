// What a client holds of an X server.
#pragma once

#include <sys/types.h>

#include <cstddef>

#include "support/x_connection.hpp"

namespace framesink::test {

// Windows, pixmaps, graphics contexts, cursors and all else that the server keeps for the clients
// of that process, but for colour maps: SDL 2.26 leaves one of each window behind until it is shut
// down, three under OpenGL. 0 when the process has no client.
std::size_t countXResources(XConnection& x, pid_t process);

}  // namespace framesink::test
