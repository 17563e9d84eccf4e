// Keeps the process safe where SDL draws through OpenGL. SDL does so on Wayland, where SDL 2.26 has
// no software windows, but not on X11, where the library forbids it.
//
// Unloading: an OpenGL driver may load and unload libraries at any time, on the thread that draws.
// A host's dlclose holds the loader's lock while it waits for the display thread. A display thread
// that needs the loader would block until dlclose gives up, and would then run code that is no
// longer mapped. Therefore the library stays loaded.
//
// exit(): the driver makes some static objects only when it compiles what it draws with, later than
// the library makes its own. exit() therefore destroys them first, and a display thread that still
// draws crashes.
#pragma once

namespace framesink {

// After this call, dlclose leaves the library loaded, its windows open and its threads running
// until the process ends. Call it on a host thread, before the display thread starts.
void stayLoaded();

// Makes exit() on the main thread call `end` first, before any static object is destroyed.
// pthread_exit() on the main thread calls it too, although the process lives on. Does nothing on
// any other thread, or if already registered. Keeps the library loaded, so call stayLoaded before
// it.
void callFirstAtExit(void (*end)());

}  // namespace framesink
