#include "system/display_check.hpp"

namespace framesink::play {

// Every session has a desktop.
void requireDisplay() {}

}  // namespace framesink::play
