/* placed_host LIBRARY SYNCHRONOUS: opens a window at the upper edge of the screen and prints its
 * place and size, and again whenever they change, until the user closes it. */
#include <stdio.h>
#include <string.h>

#include "host.h"

int main(int count, char** arguments) {
  CHECK(count == 3);
  Library library = loadLibrary(arguments[1]);
  Frame frame;
  fillFrame(&frame, 0x3060C0);
  void* const block =
      createBlock(&library, (WindowRequest){"placed", 200, 0, 1, arguments[2][0] == '1'});
  char told[64] = "";
  while (library.isOpen("placed")) {
    int32_t position[2], size[2];
    char now[64];
    updateBlock(&library, block, &frame);
    library.getPosSize("placed", position, size);
    snprintf(now, sizeof now, "%d x %d at %d, %d", size[0], size[1], position[0], position[1]);
    if (strcmp(told, now) != 0) say(strcpy(told, now));
    sleepMilliseconds(1);
  }
  library.destroy(block);
  unloadLibrary(&library);
  CHECK(isUnloaded("framesink"));
  return 0;
}
