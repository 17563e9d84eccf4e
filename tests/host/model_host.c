/* model_host LIBRARY: a model that does not care whether anybody can see it. */
#include <stdio.h>

#include "host.h"

/* The logistic map; its result is known. */
static double runModel(const Library* library, void* const blocks[2]) {
  double state = 0.5;
  Frame frame;
  for (int step = 0; step < 200; ++step) {
    state = 3.75 * state * (1 - state);
    fillFrame(&frame, (uint32_t)(state * 255));
    updateBlock(library, blocks[0], &frame);
    updateBlock(library, blocks[1], &frame);
  }
  return state;
}

static double runModelUnseen(void) {
  double state = 0.5;
  for (int step = 0; step < 200; ++step) state = 3.75 * state * (1 - state);
  return state;
}

static void askEverything(const Library* library, const char* name) {
  const uint32_t pair[2] = {10, 10};
  int32_t position[2], size[2];
  library->createWindow(name, 0, pair, pair, 0);
  library->getPosSize(name, position, size);
  library->isOpen(name);
  library->rename(name, name, "title");
}

int main(int count, char** arguments) {
  CHECK(count == 2);
  Library library = loadLibrary(arguments[1]);
  void* const blocks[2] = {createBlock(&library, (WindowRequest){"model A", 100, 100, 1, 0}),
                           createBlock(&library, (WindowRequest){"model B", 300, 100, 1, 1})};
  CHECK(runModel(&library, blocks) == runModelUnseen());
  askEverything(&library, "model A");
  askEverything(&library, "model B");
  for (int i = 0; i < 2; ++i) {
    library.terminate(blocks[i]);
    library.destroy(blocks[i]);
  }
  library.destroyWindow("model A");
  library.destroyWindow("model B");
  checkForLeaks();
  unloadLibrary(&library);
  say("model done");
  return 0;
}
