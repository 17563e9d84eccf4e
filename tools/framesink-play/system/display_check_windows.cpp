#include "system/display_check.hpp"

namespace framesink::play {

// Every session on Windows has a desktop.
void requireDisplay() {}

}  // namespace framesink::play
