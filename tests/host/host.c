#include "host.h"

#include <dirent.h>
#include <dlfcn.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

/* ---- Checks
 * -------------------------------------------------------------------------------------- */

void checkThat(int holds, const char* condition, const char* file, int line) {
  if (holds) return;
  fprintf(stderr, "%s:%d: not true: %s\n", file, line, condition);
  fflush(stderr);
  _Exit(3);
}

void say(const char* text) {
  puts(text);
  fflush(stdout);
}

static sigset_t theSignal(void) {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGUSR1);
  return set;
}

void holdSignal(void) {
  const sigset_t set = theSignal();
  CHECK(sigprocmask(SIG_BLOCK, &set, NULL) == 0);
}

void awaitSignal(void) {
  const sigset_t set = theSignal();
  int number = 0;
  CHECK(sigwait(&set, &number) == 0);
}

void sleepMilliseconds(long milliseconds) {
  const struct timespec duration = {milliseconds / 1000, milliseconds % 1000 * 1000000};
  nanosleep(&duration, NULL);
}

double secondsNow(void) {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return (double)now.tv_sec + (double)now.tv_nsec * 1e-9;
}

/* ---- The library
 * --------------------------------------------------------------------------------- */

/* C has no conversion from dlsym's result to a function's address; the bytes are the same. */
static void find(const Library* library, const char* name, void* function) {
  void* const address = dlsym(library->handle, name);
  CHECK(address != NULL);
  memcpy(function, &address, sizeof address);
}

Library loadLibrary(const char* path) {
  Library library = {.handle = dlopen(path, RTLD_NOW | RTLD_LOCAL)};
  if (library.handle == NULL) fprintf(stderr, "%s\n", dlerror());
  CHECK(library.handle != NULL);
  find(&library, "libCreate", &library.create);
  find(&library, "libStart", &library.start);
  find(&library, "libUpdate", &library.update);
  find(&library, "libOutputs", &library.outputs);
  find(&library, "libTerminate", &library.terminate);
  find(&library, "libDestroy", &library.destroy);
  find(&library, "createVideoWindow", &library.createWindow);
  find(&library, "destroyVideoWindow", &library.destroyWindow);
  find(&library, "getWindowPosSize", &library.getPosSize);
  find(&library, "isPlayerOpen", &library.isOpen);
  find(&library, "renameVideoWindow", &library.rename);
  return library;
}

extern void __lsan_do_leak_check(void) __attribute__((weak));

void checkForLeaks(void) {
  if (__lsan_do_leak_check != NULL) __lsan_do_leak_check();
}

void unloadLibrary(Library* library) {
  CHECK(dlclose(library->handle) == 0);
  memset(library, 0, sizeof *library);
}

const char* libraryText(const Library* library, const char* name) {
  const char* const* const text = dlsym(library->handle, name);
  CHECK(text != NULL);
  return *text;
}

/* ---- Frames and blocks
 * --------------------------------------------------------------------------- */

void fillFrame(Frame* frame, uint32_t colour) {
  for (int plane = 0; plane < 3; ++plane) {
    memset(frame->planes[plane], (int)(colour >> (16 - 8 * plane) & 0xFF), FRAME_SAMPLES);
  }
}

InputDescription describeFrames(void) {
  InputDescription description = {
      .valid = 1, .inputCount = 3, .componentCount = 3, .dataType = FRAMESINK_UINT8, .layout = 1};
  for (int plane = 0; plane < 3; ++plane) {
    description.widths[plane] = FRAME_WIDTH;
    description.heights[plane] = FRAME_HEIGHT;
  }
  return description;
}

void* createBlock(const Library* library, WindowRequest request) {
  const InputDescription description = describeFrames();
  char error[FRAMESINK_ERROR_BYTES] = "untouched";
  void* const block =
      library->create(error, 0, request.name, request.name, 0, &description, request.open,
                      request.x, request.y, 0, 0, 0, 0, 0, request.synchronous);
  CHECK(block != NULL);
  library->start(block, error);
  CHECK(strcmp(error, "untouched") == 0);
  return block;
}

void updateBlock(const Library* library, void* block, const Frame* frame) {
  char error[FRAMESINK_ERROR_BYTES] = "untouched";
  library->update(block, error, frame->planes[0], frame->planes[1], frame->planes[2],
                  FRAMESINK_CONFIGURED_SIZE, FRAMESINK_CONFIGURED_SIZE);
  CHECK(strcmp(error, "untouched") == 0);
}

void showUntilClosed(const Library* library, void* block, const char* name, uint32_t colour) {
  Frame frame;
  fillFrame(&frame, colour);
  while (library->isOpen(name)) {
    updateBlock(library, block, &frame);
    sleepMilliseconds(1);
  }
}

/* ---- This process as the system sees it
 * ---------------------------------------------------------- */

static int countEntries(const char* path) {
  DIR* const folder = opendir(path);
  CHECK(folder != NULL);
  int count = 0;
  for (const struct dirent* entry; (entry = readdir(folder)) != NULL;) {
    if (entry->d_name[0] != '.') ++count;
  }
  closedir(folder);
  return count;
}

int countThreads(void) { return countEntries("/proc/self/task"); }

int areThreadsGone(int before) {
#if defined(__SANITIZE_THREAD__)
  const int own = 1;
#elif defined(__has_feature)
  const int own = __has_feature(thread_sanitizer);
#else
  const int own = 0;
#endif
  const int now = countThreads();
  return now == before || now == before + own;
}

int countDescriptors(void) { return countEntries("/proc/self/fd") - 1; /* the walk's own */ }

int isMapped(const char* part) {
  FILE* const maps = fopen("/proc/self/maps", "r");
  CHECK(maps != NULL);
  char line[4096];
  int found = 0;
  while (!found && fgets(line, sizeof line, maps) != NULL) {
    const char* const path = strchr(line, '/');
    found = path != NULL && strstr(path, part) != NULL && strstr(line, " r-xp ") != NULL;
  }
  fclose(maps);
  return found;
}
