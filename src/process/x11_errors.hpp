// The errors that the X server reports for requests of SDL's connection. Xlib's standard answer is
// to end the process.
#pragma once

#include "process/xlib.hpp"

namespace framesink {

// From now on, no error on this connection ends the process. While SDL waits for an error with a
// temporary handler, that handler still receives every error, as BadAccess, the only code that SDL
// expects when it asks for shared memory. Call it on a host thread, while SDL waits for no error.
void attachX11Errors(const Xlib& xlib, Display* display);

// From now on, prints the first error of each kind on standard error.
void tellX11Errors();

}  // namespace framesink
