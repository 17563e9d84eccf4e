/* model_host LIBRARY: a model that runs whether or not its windows can be seen. Shows three windows
 * and prints their state. At the first SIGUSR1 it closes two of them and unloads the library; at
 * the second it ends. */
#include <stdio.h>

#include "host.h"

enum { WINDOWS = 3, STEPS = 100 };
static const char* const names[WINDOWS] = {"model A", "model B", "model C"};

static Library library;
static void* blocks[WINDOWS];

/* The second window is synchronous. */
static void openWindows(void) {
  for (int i = 0; i < WINDOWS; ++i) {
    const uint32_t x = 100 + 200 * (uint32_t)i;
    blocks[i] = createBlock(&library, (WindowRequest){names[i], x, 120, 1, i == 1});
  }
}

static double step(double state) { return 3.75 * state * (1 - state); }

/* The logistic map. Showing frames must not change its result. */
static double runModel(uint32_t colour) {
  double state = 0.5;
  Frame frame;
  for (int i = 0; i < STEPS; ++i) {
    state = step(state);
    fillFrame(&frame, i + 1 < STEPS ? (uint32_t)(state * 255) : colour);
    for (int window = 0; window < WINDOWS; ++window) updateBlock(&library, blocks[window], &frame);
  }
  return state;
}

static double runModelUnseen(void) {
  double state = 0.5;
  for (int i = 0; i < STEPS; ++i) state = step(state);
  return state;
}

static void printAnswers(void) {
  for (int i = 0; i < WINDOWS; ++i) {
    int32_t position[2], size[2];
    library.getPosSize(names[i], position, size);
    printf("%s: %s, %d x %d at %d, %d\n", names[i], library.isOpen(names[i]) ? "open" : "closed",
           size[0], size[1], position[0], position[1]);
  }
}

/* Creating a window that is open raises it. */
static void useWindows(void) {
  const uint32_t pair[2] = {10, 10};
  for (int i = 0; i < WINDOWS; ++i) {
    library.createWindow(names[i], 0, pair, pair, 0);
    library.rename(names[i], names[i], "renamed");
  }
}

/* The third window stays open until the library is unloaded. */
static void closeWindows(void) {
  for (int i = 0; i < WINDOWS; ++i) {
    library.terminate(blocks[i]);
    library.destroy(blocks[i]);
    if (i == 2) continue;
    library.destroyWindow(names[i]);
    CHECK(!library.isOpen(names[i]));
  }
}

/* A library that cannot be unloaded safely stays; loading it again finds it unchanged. */
static void loadAgainWhereItStays(const char* path) {
  if (!isMapped("libframesink")) return;
  library = loadLibrary(path);
  CHECK(library.isOpen(names[2]));
}

int main(int count, char** arguments) {
  CHECK(count == 2);
  holdSignal();
  library = loadLibrary(arguments[1]);
  const double start = secondsNow();
  openWindows();
  const double opened = secondsNow();
  CHECK(runModel(0xFF00FF) == runModelUnseen());
  fprintf(stdout, "opening %.0f ms, running %.0f ms\n", (opened - start) * 1e3,
          (secondsNow() - opened) * 1e3);
  printAnswers();
  useWindows();
  say("model run");
  awaitSignal();
  closeWindows();
  checkForLeaks();
  unloadLibrary(&library);
  say(isMapped("libframesink") ? "library stays" : "library gone");
  awaitSignal();
  loadAgainWhereItStays(arguments[1]);
  return 0;
}
