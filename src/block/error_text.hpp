// Texts for the host's error buffer.
#pragma once

namespace framesink {

// Copies `text` into the host's buffer of FRAMESINK_ERROR_BYTES bytes. A text of that length or
// more arrives without its terminating zero; this truncation is the interface's own. A null text
// counts as empty; a null buffer takes nothing.
void reportError(char* errorMessage, const char* text);

}  // namespace framesink
