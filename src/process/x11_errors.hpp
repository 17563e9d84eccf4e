// The errors that the X server reports for requests of SDL's connection. Xlib's standard answer is
// to end the process.
#pragma once

#include "process/xlib.hpp"

namespace framesink {

// From now on, errors on this connection end nothing. SDL still receives the errors that it waits
// for with a handler of its own, and a refusal to share memory in the form in which SDL understands
// it. Call it on a host thread, while SDL waits for no error.
void attachX11Errors(const Xlib& xlib, Display* display);

// From now on, the first error of each kind on the connection is told on standard error.
void tellX11Errors();

}  // namespace framesink
