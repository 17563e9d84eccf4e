/* torture_host LIBRARY SECONDS: shows frames in four windows at full speed, and opens again what
 * the user closes. */
#include <stdio.h>
#include <stdlib.h>

#include "host.h"

enum { WINDOWS = 4 };
static const char* const names[WINDOWS] = {"torture 0", "torture 1", "torture 2", "torture 3"};

/* Makes every call that a host's user interface may make. */
static void useWindow(const Library* library, int index, uint32_t number) {
  const uint32_t position[2] = {40 + 300 * (uint32_t)index, 60};
  const uint32_t size[2] = {200, 150};
  int32_t pairs[4];
  if (!library->isOpen(names[index]) || number % 1024 == 0) {
    library->createWindow(names[index], 0, position, size, 1);
  }
  if (number % 16 == 1) library->getPosSize(names[index], pairs, pairs + 2);
  if (number % 32 == 2) library->rename(names[index], names[index], names[index]);
}

int main(int count, char** arguments) {
  CHECK(count == 3);
  Library library = loadLibrary(arguments[1]);
  void* blocks[WINDOWS];
  for (int i = 0; i < WINDOWS; ++i) {
    blocks[i] = createBlock(&library, (WindowRequest){names[i], 40 + 300 * (uint32_t)i, 60, 1, 0});
  }
  say("showing");
  const double end = secondsNow() + atof(arguments[2]);
  Frame frame;
  uint32_t number = 0;
  for (; secondsNow() < end; ++number) {
    fillFrame(&frame, number);
    for (int i = 0; i < WINDOWS; ++i) {
      updateBlock(&library, blocks[i], &frame);
      useWindow(&library, i, number);
    }
  }
  printf("frames %u, over by %.3f s\n", number, secondsNow() - end);
  for (int i = 0; i < WINDOWS; ++i) library.destroy(blocks[i]);
  checkForLeaks();
  unloadLibrary(&library);
  CHECK(!isMapped("libframesink"));
  return 0;
}
