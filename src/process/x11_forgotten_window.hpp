// Windows that a window manager has forgotten. A window is shown once the window manager has
// answered the request to show it. If it ends before, the request is lost, and SDL would wait for
// ever.
#pragma once

#include <cstdint>

namespace framesink {

// Finds the X protocol's C library in the copy that Xlib uses. Host threads.
void openXcb();
void closeXcb();

// Requests once more to show the newest of SDL's top-level windows that is not shown: where there
// is no window manager any more, the X server shows it at once. `anyWindow` is or was a window of
// SDL's connection. Uses a connection of its own and waits for the X server. Any thread.
void showForgottenWindow(const char* displayName, std::uint32_t anyWindow);

}  // namespace framesink
