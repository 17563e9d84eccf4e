/* cycles_host LIBRARY CYCLES WHEN: loads the library and unloads it with windows open, CYCLES
 * times. WHEN is "shown" (once nobody else holds the library) or "at-once" (while windows are being
 * made). */
#include <windows.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "host.h"

typedef struct Cycle {
  int number;
  int waits; /* true: waits for the windows, and until only this program holds the library */
} Cycle;

/* Opens threaded windows, synchronous ones, or both; in some cycles destroys a window just before
 * unloading. A cycle that does not wait never mixes the two, because a thread of the operating
 * system may then unload the library, and that thread cannot close synchronous windows. */
static void play(const Library* library, Cycle cycle) {
  const uint8_t first = cycle.number % 3 == 1;
  const uint8_t second = cycle.waits ? cycle.number % 3 != 0 : first;
  void* const blocks[2] = {createBlock(library, (WindowRequest){"cycle A", 100, 100, 1, first}),
                           createBlock(library, (WindowRequest){"cycle B", 400, 100, 1, second})};
  Frame frame;
  for (uint32_t number = 0; number < 5; ++number) {
    fillFrame(&frame, 0x20A040 + number);
    updateBlock(library, blocks[0], &frame);
    updateBlock(library, blocks[1], &frame);
  }
  int32_t position[2], size[2];
  if (cycle.waits) library->getPosSize("cycle A", position, size);
  if (cycle.waits) library->getPosSize("cycle B", position, size);
  if (cycle.number % 4 == 0) library->destroyWindow("cycle A");
  library->destroy(blocks[0]);
  library->destroy(blocks[1]);
  if (cycle.waits) CHECK(isHeldOnce("framesink"));
}

static double runCycle(const char* path, Cycle cycle) {
  Library library = loadLibrary(path);
  play(&library, cycle);
  const double start = secondsNow();
  unloadLibrary(&library);
  CHECK(isUnloaded("framesink"));
  CHECK(isUnloaded("SDL2"));
  CHECK(isUnloaded("pixkit"));
  CHECK(areThreadsGone(0));
  const double seconds = secondsNow() - start;
  CHECK(seconds < 10); /* a hang takes 20 s */
  return seconds;
}

/* The number of the lowest free handle, which Wine hands out next. Handles are 4 apart. */
static int firstFreeHandle(void) {
  const HANDLE event = CreateEventA(NULL, FALSE, FALSE, NULL);
  CloseHandle(event);
  return (int)((intptr_t)event / 4);
}

/* Handles that remain after Wine's winmm, which SDL loads, is loaded and unloaded. */
static int handlesLeftByWine(void) {
  FreeLibrary(LoadLibraryA("winmm")); /* the first time takes more handles */
  const int before = firstFreeHandle();
  FreeLibrary(LoadLibraryA("winmm"));
  return firstFreeHandle() - before;
}

/* Each cycle leaves the handle of the thread that is never joined, and two that the compiler's
 * thread library keeps for the host's thread. A thread that ends late may still hold some. */
static int mayLeaveHandles(int cycles) { return cycles * (3 + handlesLeftByWine()) + cycles / 2; }

int main(int count, char** arguments) {
  CHECK(count == 4);
  const int cycles = atoi(arguments[2]);
  const int waits = strcmp(arguments[3], "shown") == 0;
  CHECK(cycles >= 4);
  double longest = 0;
  int handles = 0;
  for (int number = 0; number < cycles; ++number) {
    const double seconds = runCycle(arguments[1], (Cycle){number, waits});
    if (seconds > longest) longest = seconds;
    if (number == cycles / 2) handles = firstFreeHandle();
  }
  const int left = firstFreeHandle() - handles;
  const int last = cycles - cycles / 2 - 1;
  printf("%d cycles, the longest unloading took %.3f s; the last %d left %d handles\n", cycles,
         longest, last, left);
  CHECK(left <= mayLeaveHandles(last));
  return 0;
}
