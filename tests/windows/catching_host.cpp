// catching_host LIBRARY WAY: asks for a window whose frames need more memory than there is. WAY is
// "catch", or "uncaught" for a host that cannot catch what libCreate throws.
#include <cstring>
#include <new>

extern "C" {
#include "host.h"
}

namespace {

void createHugeBlock(const Library& library) {
  InputDescription description = describeFrames();
  for (int plane = 0; plane < 3; ++plane) {
    description.widths[plane] = description.heights[plane] = 0x7FFFFFFF;
  }
  char error[FRAMESINK_ERROR_BYTES] = "";
  library.create(error, 0, "huge", "huge", 0, &description, 1, 0, 0, 0, 0, 0, 0, 0, 0);
  say("created");
}

void createHugeBlockForC(const Library& library) noexcept { createHugeBlock(library); }

}  // namespace

int main(int count, char** arguments) {
  CHECK(count == 3);
  Library library = loadLibrary(arguments[1]);
  if (std::strcmp(arguments[2], "uncaught") == 0) createHugeBlockForC(library);
  try {
    createHugeBlock(library);
  } catch (const std::bad_alloc&) {
    say("caught");
  }
  Frame frame;
  fillFrame(&frame, 0x3060C0);
  updateBlock(&library, createBlock(&library, {"small", 100, 100, 1, 0}), &frame);
  CHECK(library.isOpen("small"));
  unloadLibrary(&library);
  CHECK(isUnloaded("framesink"));
  return 0;
}
