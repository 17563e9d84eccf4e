// SDL without a screen, watched: for what is asked of SDL, not for what a user sees.
#pragma once

#include <gtest/gtest.h>

#include "support/scoped_variable.hpp"
#include "support/sdl_recorder.hpp"

namespace framesink::test {

class DummyVideoTest : public testing::Test {
 protected:
  ScopedVariable driver{"SDL_VIDEODRIVER", "dummy"};
  SdlRecorder recorder;
};

}  // namespace framesink::test
