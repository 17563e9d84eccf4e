// Texts for the host's error buffer.
#pragma once

namespace framesink {

// Copies `text` into the host's buffer of FRAMESINK_ERROR_BYTES bytes. A text of that length or
// more is cut and arrives without its terminating zero; the interface defines it so. A null text
// counts as empty; a null buffer discards the text.
void reportError(char* errorMessage, const char* text);

}  // namespace framesink
