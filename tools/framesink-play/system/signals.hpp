// Stop signals such as Ctrl-C: the player stops, cleans up, and ends by the signal it received.
#pragma once

namespace framesink::play {

// Makes SIGINT, SIGTERM and SIGHUP set the stop signal. A second one ends the process at once. A
// SIGHUP that was ignored at the start stays ignored. On Windows SIGBREAK replaces SIGHUP.
void catchStopSignals();

// Returns the signal that asked the player to stop; 0: none so far.
int stopSignal();

// Ends the process by the signal `number`.
[[noreturn]] void dieBySignal(int number);

}  // namespace framesink::play
