// Ctrl-C and its like: the player stops, cleans up, and then dies by the very signal it was sent.
#pragma once

namespace framesink::play {

// From now on SIGINT, SIGTERM and SIGHUP only set the stop signal, once; a second one kills at
// once. A signal that was ignored when the process began stays ignored.
void catchStopSignals();

// The signal that asked the player to stop; 0: none so far.
int stopSignal();

// Ends the process by the signal `number`.
[[noreturn]] void dieBySignal(int number);

}  // namespace framesink::play
