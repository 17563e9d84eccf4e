/* ranges_host LIBRARY VALUE: shows a small frame, whose samples are singles of that value, centred
 * in a larger one until the user closes the window. */
#include <stdlib.h>

#include "host.h"

int main(int count, char** arguments) {
  CHECK(count == 3);
  float samples[8 * 6];
  for (size_t i = 0; i < sizeof samples / sizeof *samples; ++i) {
    samples[i] = strtof(arguments[2], NULL);
  }
  const InputDescription description = {.valid = 1,
                                        .inputCount = 1,
                                        .componentCount = 1,
                                        .widths = {16},
                                        .heights = {12},
                                        .dataType = FRAMESINK_SINGLE,
                                        .layout = 1};
  Library library = loadLibrary(arguments[1]);
  void* const block = library.create(NULL, 0, "ranges", "ranges", 0, &description, 1, 100, 100, 0,
                                     0, 0, 0, /*allocatePlaneBuffers=*/1, 0);
  CHECK(block != NULL);
  while (library.isOpen("ranges")) {
    library.update(block, NULL, samples, NULL, NULL, 8, 6);
    sleepMilliseconds(1);
  }
  library.destroy(block);
  checkForLeaks();
  unloadLibrary(&library);
  return 0;
}
