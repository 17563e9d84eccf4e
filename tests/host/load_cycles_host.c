/* load_cycles_host LIBRARY CYCLES: loads and unloads the library again and again, with windows
 * open, while a user may be at them. Prints what each cycle leaves in memory. */
#define _GNU_SOURCE
#include <malloc.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "host.h"

#if defined(__has_feature)
#define HAS_FEATURE(feature) __has_feature(feature)
#else
#define HAS_FEATURE(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || \
    HAS_FEATURE(address_sanitizer) || HAS_FEATURE(thread_sanitizer)
/* Sanitizers keep records of every load and thread for ever: about 80 KB for loading and unloading
 * alone. What the library itself leaves cannot be told from that. */
enum { MEASURES_MEMORY = 0 };
#else
enum { MEASURES_MEMORY = 1 };
#endif

/* A size that nothing else has, so that the stacks of threads can be told from other memory. */
static const size_t kStackBytes = 3 * 1024 * 1024 + 5 * 4096;

typedef struct Memory {
  long stacks; /* resident bytes in the stacks of threads that have ended */
  long other;  /* resident bytes in all else */
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

/* Blocks of one display, the other, and both; each display shuts SDL down in its own way. */
static void play(const Library* library, int cycle) {
  const uint8_t first = cycle % 3 == 1;
  const uint8_t second = cycle % 3 != 0;
  void* const blocks[2] = {createBlock(library, (WindowRequest){"cycle A", 100, 100, 1, first}),
                           createBlock(library, (WindowRequest){"cycle B", 300, 100, 1, second})};
  Frame frame;
  for (uint32_t number = 0; number < 5; ++number) {
    fillFrame(&frame, 0x20A040 + number);
    updateBlock(library, blocks[0], &frame);
    updateBlock(library, blocks[1], &frame);
  }
  if (cycle % 2 == 0) library->destroyWindow("cycle A");
  int32_t position[2], size[2];
  library->getPosSize("cycle B", position, size);
  library->destroy(blocks[0]);
  library->destroy(blocks[1]);
}

static void runCycle(const char* path, int cycle, int threads) {
  const double start = secondsNow();
  Library library = loadLibrary(path);
  play(&library, cycle);
  unloadLibrary(&library);
  const double seconds = secondsNow() - start;
  CHECK(!isMapped("libframesink"));
  CHECK(!isMapped("libSDL2"));
  CHECK(!isMapped("libpixkit"));
  CHECK(areThreadsGone(threads));
  if (seconds >= 1) fprintf(stderr, "cycle %d took %.3f s\n", cycle, seconds);
  CHECK(seconds < 1);
}

static void setStackSize(void) {
  pthread_attr_t attributes;
  CHECK(pthread_attr_init(&attributes) == 0);
  CHECK(pthread_attr_setstacksize(&attributes, kStackBytes) == 0);
  CHECK(pthread_setattr_default_np(&attributes) == 0);
  pthread_attr_destroy(&attributes);
}

static void limitGrowth(Memory begin, Memory end, long cycles) {
  const long other = (end.other - begin.other) / cycles;
  const long stacks = (end.stacks - begin.stacks) / cycles;
  if (!MEASURES_MEMORY) {
    puts("memory is not measured in builds with sanitizers");
    return;
  }
  printf("%ld bytes a cycle, and %ld in stacks of ended threads\n", other, stacks);
  CHECK(other < 4096);
  /* The thread is never joined, so the C library keeps its record of it, at the stack's top. */
  CHECK(end.stacks > 0);
  CHECK(stacks <= 8192);
}

int main(int count, char** arguments) {
  CHECK(count == 4);
  const int cycles = atoi(arguments[2]);
  CHECK(cycles >= 4);
  const int threads = countThreads();
  setStackSize();

  Memory half = {0, 0};
  int descriptors = 0;
  for (int cycle = 0; cycle < cycles; ++cycle) {
    runCycle(arguments[1], cycle, threads);
    if (cycle == 0) descriptors = countDescriptors();
    CHECK(countDescriptors() == descriptors);
    if (cycle == cycles / 2) half = measureMemory();
  }
  if (strcmp(arguments[3], "measured") == 0) {
    limitGrowth(half, measureMemory(), cycles - 1 - cycles / 2);
  }
  return 0;
}
