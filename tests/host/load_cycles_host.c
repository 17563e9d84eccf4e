/* load_cycles_host LIBRARY CYCLES WINDOWS measured|unmeasured SECONDS: loads and unloads the library
 * CYCLES times, each time with WINDOWS windows, which a user may move or close meanwhile. Fails if
 * one unloading takes longer than SECONDS. Prints how long each took and, if measured, how much
 * memory each cycle leaves in use. */
#define _GNU_SOURCE
#include <malloc.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "host.h"

#if defined(__has_feature)
#define HAS_FEATURE(feature) __has_feature(feature)
#else
#define HAS_FEATURE(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || \
    HAS_FEATURE(address_sanitizer) || HAS_FEATURE(thread_sanitizer)
/* Sanitizers keep records of every load and thread: about 80 KB for loading and unloading alone.
 * What the library itself leaves cannot be told from those. */
enum { MEASURES_MEMORY = 0 };
#else
enum { MEASURES_MEMORY = 1 };
#endif

/* No other memory has this size, so that the stacks of threads can be recognised by it. */
static const size_t kStackBytes = 3 * 1024 * 1024 + 5 * 4096;

typedef struct Memory {
  long stacks; /* resident bytes in the stacks of threads that have ended */
  long other;  /* all other resident bytes */
} Memory;

static Memory measureMemory(void) {
  malloc_trim(0);
  Memory memory = {0, 0};
  FILE* const maps = fopen("/proc/self/smaps", "r");
  CHECK(maps != NULL);
  char line[4096];
  int isStack = 0;
  while (fgets(line, sizeof line, maps) != NULL) {
    unsigned long begin, end;
    long kilobytes;
    if (sscanf(line, "%lx-%lx ", &begin, &end) == 2) isStack = end - begin == kStackBytes;
    if (sscanf(line, "Rss: %ld kB", &kilobytes) != 1) continue;
    *(isStack ? &memory.stacks : &memory.other) += kilobytes * 1024;
  }
  fclose(maps);
  return memory;
}

/* ---- One cycle ---- */

enum { MOST_WINDOWS = 8 };
static const char* const names[MOST_WINDOWS] = {"cycle A", "cycle B", "cycle C", "cycle D",
                                                "cycle E", "cycle F", "cycle G", "cycle H"};

typedef struct Windows {
  int count;
  void* blocks[MOST_WINDOWS];
} Windows;

/* The cycles use one server, the other, and both in either order, because each server shuts SDL
 * down in its own way. */
static uint8_t isSynchronous(int cycle, int window) {
  static const uint8_t flags[4][2] = {{0, 0}, {1, 1}, {0, 1}, {1, 0}};
  return flags[cycle % 4][window % 2];
}

/* Without windows there is still one block, whose window stays closed. */
static Windows createBlocks(const Library* library, int count, int cycle) {
  Windows windows = {.count = count};
  for (int i = 0; i < count || i == 0; ++i) {
    const uint32_t x = 100 + 200 * (uint32_t)(i % 4);
    const uint32_t y = 100 + 200 * (uint32_t)(i / 4);
    const WindowRequest request = {names[i], x, y, count != 0, isSynchronous(cycle, i)};
    windows.blocks[i] = createBlock(library, request);
  }
  return windows;
}

static void showFrames(const Library* library, const Windows* windows) {
  Frame frame;
  for (uint32_t number = 0; number < 5; ++number) {
    fillFrame(&frame, 0x20A040 + number);
    for (int i = 0; i < windows->count || i == 0; ++i) {
      updateBlock(library, windows->blocks[i], &frame);
    }
  }
}

static int howManyToClose(int cycle, int count) {
  static const int choices[3] = {MOST_WINDOWS, 1, 0};
  const int choice = choices[cycle / 4 % 3];
  return choice < count ? choice : count;
}

/* Waits for the windows in cycles 0 to 11 of every 24. In the others they may still be in the
 * making when the library is unloaded. */
static void play(const Library* library, int cycle, int count) {
  Windows windows = createBlocks(library, count, cycle);
  showFrames(library, &windows);
  if (cycle / 12 % 2 == 0) {
    int32_t position[2], size[2];
    for (int i = 0; i < count; ++i) library->getPosSize(names[i], position, size);
  }
  for (int i = 0; i < howManyToClose(cycle, count); ++i) library->destroyWindow(names[i]);
  for (int i = 0; i < count || i == 0; ++i) library->destroy(windows.blocks[i]);
}

/* Rests 0 to 10 ms, so that the display thread may be anywhere in its pass. */
static void restAWhile(void) {
  const struct timespec rest = {0, rand() % 10001 * 1000L};
  nanosleep(&rest, NULL);
}

/* Returns how long the unloading took, in seconds; at most `limit`. */
static double runCycle(const char* path, int cycle, int windows, int threads, double limit) {
  Library library = loadLibrary(path);
  play(&library, cycle, windows);
  restAWhile();
  const double start = secondsNow();
  unloadLibrary(&library);
  const double seconds = secondsNow() - start;
  CHECK(!isMapped("libframesink"));
  CHECK(!isMapped("libSDL2"));
  CHECK(!isMapped("libpixkit"));
  CHECK(areThreadsGone(threads));
  if (seconds >= limit) fprintf(stderr, "unloading took %.3f s in cycle %d\n", seconds, cycle);
  CHECK(seconds < limit);
  return seconds;
}

/* ---- All cycles ---- */

static void setStackSize(void) {
  pthread_attr_t attributes;
  CHECK(pthread_attr_init(&attributes) == 0);
  CHECK(pthread_attr_setstacksize(&attributes, kStackBytes) == 0);
  CHECK(pthread_setattr_default_np(&attributes) == 0);
  pthread_attr_destroy(&attributes);
}

/* Flushes each line, so that a host that is ended by force has reported every finished cycle. */
static void reportCycle(int cycle, double unloading, double sinceStart) {
  printf("cycle %d ended after %.1f s, unloading took %.0f ms\n", cycle, sinceStart,
         unloading * 1e3);
  fflush(stdout);
}

/* Cycles without windows start no thread, so they must leave no stack behind. */
static void limitGrowth(Memory begin, Memory end, long cycles, int windows) {
  const long other = (end.other - begin.other) / cycles;
  const long stacks = (end.stacks - begin.stacks) / cycles;
  if (!MEASURES_MEMORY) {
    puts("memory is not measured in builds with sanitizers");
    return;
  }
  printf("%ld bytes a cycle, and %ld in stacks of ended threads\n", other, stacks);
  CHECK(other < 4096);
  /* The thread is never joined, so the C library keeps its record of it at the top of the stack. */
  CHECK((end.stacks > 0) == (windows != 0));
  CHECK(stacks <= 8192);
}

int main(int count, char** arguments) {
  CHECK(count == 6);
  const int cycles = atoi(arguments[2]);
  const int windows = atoi(arguments[3]);
  const int measured = strcmp(arguments[4], "measured") == 0;
  const double limit = atof(arguments[5]);
  CHECK(cycles >= 4);
  CHECK(windows >= 0 && windows <= MOST_WINDOWS);
  const int threads = countThreads();
  setStackSize();

  Memory half = {0, 0};
  int descriptors = 0;
  double longest = 0;
  const double start = secondsNow();
  for (int cycle = 0; cycle < cycles; ++cycle) {
    const double unloading = runCycle(arguments[1], cycle, windows, threads, limit);
    if (unloading > longest) longest = unloading;
    if (!measured) reportCycle(cycle, unloading, secondsNow() - start);
    if (cycle == 0) descriptors = countDescriptors();
    CHECK(countDescriptors() == descriptors);
    if (cycle == cycles / 2) half = measureMemory();
  }
  printf("%d cycles with %d windows: %.1f s, longest unloading %.0f ms\n", cycles, windows,
         secondsNow() - start, longest * 1e3);
  if (measured) limitGrowth(half, measureMemory(), cycles - 1 - cycles / 2, windows);
  return 0;
}
