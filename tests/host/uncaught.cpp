#include "uncaught.h"

#include <stdexcept>

void throwUncaught() { throw std::runtime_error("nobody catches this"); }
