// Where SDL draws through OpenGL: on Wayland, where SDL 2.26 has no software windows, and where the
// user's environment says so.
//
// OpenGL loads and unloads libraries whenever it likes, on the thread that draws. While a host's
// dlclose waits for the display thread it holds the loader's lock: a display thread that needs the
// loader then never ends, and goes on in code that is no longer there once dlclose has given up.
// A library that cannot be unloaded safely stays loaded.
//
// The other end is exit(). The driver makes static objects whenever it compiles what it draws with,
// so exit() ends them before any of ours, and a display thread that still draws crashes.
#pragma once

namespace framesink {

// Told from the environment, which SDL reads when it starts. May run out of memory.
bool isOpenGlInUse();

// dlclose leaves this library loaded, its windows open and its threads at work, to the end of the
// process. On a host thread, before the display thread starts.
void stayLoaded();

// exit(), called on the main thread, begins with `end`, before any static object ends; so does
// pthread_exit() there, though the process lives on. Nothing happens when this thread is not the main
// one. Keeps the library loaded, so after stayLoaded.
void callFirstAtExit(void (*end)());

}  // namespace framesink
