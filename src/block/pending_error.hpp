// The library's pending-error slot. Dormant: nothing in the library sets it, but three exports
// consult it.
#pragma once

namespace framesink {

bool isErrorPending();

// Returns the stored text, possibly null, and clears the slot.
const char* takePendingError();

}  // namespace framesink
