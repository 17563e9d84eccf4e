// The module's pending-error slot. Nothing in the library sets it; the exports consult it all the
// same.
#pragma once

namespace framesink {

bool isErrorPending();

// The stored text, possibly null; clears the slot.
const char* takePendingError();

}  // namespace framesink
