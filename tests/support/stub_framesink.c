/* A library with framesink's interface and no windows. It writes one line for each call to the file
 * named by STUB_LOG, and the planes of the latest frame to a file beside it.
 *
 *   STUB_CLOSE_AFTER   isPlayerOpen returns 0 after that many calls; unset: never. It also does if
 *                      there is a file with the log's name and ".close" added
 *   STUB_SLOW_START    the first libUpdate of a block with a window takes that many seconds
 *   STUB_SHOW          every libUpdate of a block with a window takes that many milliseconds more
 *   STUB_COMPLAINT     libCreate, libStart or libUpdate: which function reports an error
 *   STUB_RENDEZVOUS    libUpdate waits, 20 s at most, until the first byte of plane1 is not zero, and
 *                      notes the planes' addresses and whether another call came in meanwhile
 *
 * Compiled with STUB_WITHOUT_UPDATE it lacks libUpdate. */
#define _POSIX_C_SOURCE 200809L /* sleep, nanosleep */

#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "framesink/framesink.h"

struct Block {
  InputDescription description;
  int hasWindow;
};

const char* const framesink_version = "7.8.9";
const char* const framesink_build_date = "Feb  3 2021";
const char* const framesink_relative_path = "bin\\win64\\framesink.dll";

static FILE* openBesideLog(const char* ending, const char* mode) {
  char path[4096];
  const char* log = getenv("STUB_LOG");
  if (log == NULL) return NULL;
  snprintf(path, sizeof path, "%s%s", log, ending);
  return fopen(path, mode);
}

static void note(const char* format, ...) {
  FILE* file = openBesideLog("", "a");
  if (file == NULL) return;
  va_list arguments;
  va_start(arguments, format);
  vfprintf(file, format, arguments);
  va_end(arguments);
  fputc('\n', file);
  fclose(file);
}

static int complains(const char* function) {
  const char* complaint = getenv("STUB_COMPLAINT");
  return complaint != NULL && strcmp(complaint, function) == 0;
}

/* As long as a text may be: it fills the buffer and has no terminator. */
static void complain(char* errorMessage) {
  memset(errorMessage, '!', FRAMESINK_ERROR_BYTES);
  memcpy(errorMessage, "stub trouble", strlen("stub trouble"));
}

void* libCreate(char* errorMessage, uint64_t hostContext, const char* playerName,
                const char* windowTitle, uint8_t fullscreen, const InputDescription* description,
                uint8_t openAtStart, uint32_t windowX, uint32_t windowY, uint8_t useWindowSize,
                uint32_t windowWidth, uint32_t windowHeight, uint32_t inputConversion,
                uint8_t allocatePlaneBuffers, uint8_t synchronous) {
  const InputDescription* d = description;
  (void)hostContext;
  note(
      "libCreate name=\"%s\" title=\"%s\" fullscreen=%d open=%d x=%d y=%d useSize=%d size=%ux%u "
      "conversion=%u buffers=%d sync=%d",
      playerName, windowTitle, fullscreen, openAtStart, (int)windowX, (int)windowY, useWindowSize,
      windowWidth, windowHeight, inputConversion, allocatePlaneBuffers, synchronous);
  note(
      "description valid=%d fourcc=\"%.4s\" inputs=%u components=%u widths=%u,%u,%u "
      "heights=%u,%u,%u type=%u layout=%d",
      d->valid, d->fourcc, d->inputCount, d->componentCount, d->widths[0], d->widths[1],
      d->widths[2], d->heights[0], d->heights[1], d->heights[2], d->dataType, d->layout);
  if (complains("libCreate")) {
    complain(errorMessage);
    return NULL;
  }
  struct Block* block = malloc(sizeof *block);
  block->description = *description;
  block->hasWindow = openAtStart;
  return block;
}

void libStart(void* block, char* errorMessage) {
  (void)block;
  note("libStart");
  if (complains("libStart")) complain(errorMessage);
}

#ifndef STUB_WITHOUT_UPDATE
static uint32_t mix(uint32_t hash, const void* bytes, size_t count) {
  for (size_t i = 0; i < count; ++i) hash = (hash ^ ((const uint8_t*)bytes)[i]) * 16777619u;
  return hash;
}

static void slowStart(const struct Block* block) {
  static int done = 0;
  const char* seconds = getenv("STUB_SLOW_START");
  if (!block->hasWindow) return;
  if (seconds != NULL && !done) sleep((unsigned)atoi(seconds));
  done = 1;
}

static void meet(const void* const planes[3]) {
  static atomic_int inside = 0;
  const volatile uint8_t* signal = planes[0];
  const struct timespec millisecond = {0, 1000000};
  if (getenv("STUB_RENDEZVOUS") == NULL) return;
  note("planes %p %p %p", planes[0], planes[1], planes[2]);
  if (atomic_fetch_add(&inside, 1) != 0) note("two at once");
  for (int left = 20000; *signal == 0 && left > 0; --left) nanosleep(&millisecond, NULL);
  note(*signal == 0 ? "nobody came" : "met");
  atomic_fetch_sub(&inside, 1);
}

static void show(const struct Block* block) {
  const char* milliseconds = getenv("STUB_SHOW");
  if (milliseconds == NULL || !block->hasWindow) return;
  const struct timespec pause = {0, atoi(milliseconds) * 1000000L};
  nanosleep(&pause, NULL);
}

void libUpdate(void* block, char* errorMessage, const void* plane1, const void* plane2,
               const void* plane3, uint32_t width, uint32_t height) {
  static const size_t kSampleBytes[] = {8, 4, 1, 1, 2, 2, 4, 4, 1};
  const InputDescription* d = &((struct Block*)block)->description;
  const void* planes[3] = {plane1, plane2, plane3};
  uint32_t hash = 2166136261u;
  int count = 0;
  FILE* frame = openBesideLog(".frame", "wb");
  for (int i = 0; i < 3 && planes[i] != NULL; ++i, ++count) {
    const size_t bytes = kSampleBytes[d->dataType] * d->widths[i] * d->heights[i];
    hash = mix(hash, planes[i], bytes);
    if (frame != NULL) fwrite(planes[i], 1, bytes, frame);
  }
  if (frame != NULL) fclose(frame);
  slowStart(block);
  meet(planes);
  show(block);
  note("libUpdate size=%08x,%08x planes=%d hash=%08x", width, height, count, hash);
  if (complains("libUpdate")) complain(errorMessage);
}
#endif

void libOutputs(void* block) {
  (void)block;
  note("libOutputs");
}

void libTerminate(void* block) {
  (void)block;
  note("libTerminate");
}

void libDestroy(void* block) {
  note("libDestroy");
  free(block);
}

void createVideoWindow(const char* name, uint8_t fullscreen, const uint32_t* position,
                       const uint32_t* size, uint8_t useWindowSize) {
  (void)fullscreen, (void)position, (void)size, (void)useWindowSize;
  note("createVideoWindow %s", name);
}

void destroyVideoWindow(const char* name) { note("destroyVideoWindow %s", name); }

void getWindowPosSize(const char* name, int32_t* position, int32_t* size) {
  (void)position, (void)size;
  note("getWindowPosSize %s", name);
}

uint8_t isPlayerOpen(const char* name) {
  static int calls = 0;
  const char* limit = getenv("STUB_CLOSE_AFTER");
  FILE* closed = openBesideLog(".close", "r");
  (void)name;
  if (closed != NULL) {
    fclose(closed);
    return 0;
  }
  return limit == NULL || calls++ < atoi(limit);
}

void renameVideoWindow(const char* name, const char* newName, const char* newTitle) {
  (void)newName, (void)newTitle;
  note("renameVideoWindow %s", name);
}

__attribute__((destructor)) static void unload(void) { note("unloaded"); }
