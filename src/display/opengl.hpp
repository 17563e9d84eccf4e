// A library that cannot be unloaded safely stays loaded.
//
// OpenGL loads and unloads libraries whenever it likes, on the thread that draws. While a host's
// dlclose waits for the display thread it holds the loader's lock: a display thread that needs the
// loader then never ends, and goes on in code that is no longer there once dlclose has given up.
// SDL 2.26 draws through OpenGL on Wayland, where it has no software windows, and where the user's
// environment says so.
#pragma once

namespace framesink {

// Where SDL will draw through OpenGL: dlclose leaves this library loaded, its windows open and its
// threads at work, to the end of the process. On a host thread, before the display thread starts.
void stayLoadedWithOpenGl();

}  // namespace framesink
