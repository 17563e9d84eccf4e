/* soak_host LIBRARY LOADS SECONDS DISPLAY DISPLAY SERVERS LEAK: loads the library LOADS times, on
 * the two displays in turn. Each time it does for SECONDS everything that a host may do with eight
 * windows. SERVERS is both, threaded or synchronous. LEAK is none, descriptor,
 * memory or window. Prints measurements on standard output. */
#include <malloc.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "forms.h"
#include "host.h"
#include "sdl_counts.h"

enum { WINDOWS = 8, WORDS_PER_LOAD = 32, STEPS_BETWEEN_DEEDS = 64 };
static const double kStepSeconds = 0.03;

typedef struct Show {
  char name[24];
  int index;
  Form form;
  void* block;
} Show;

static Show shows[WINDOWS];
static Library library;
static unsigned framesSent, closedByUser, formsUsed;
static const char* servers;

static int firstSynchronous; /* index of the first synchronous window */

static int isSynchronous(const Show* show) { return show->index >= firstSynchronous; }

/* The new block has another kind or sample type than the one before. */
static void makeBlock(Show* show) {
  char error[FRAMESINK_ERROR_BYTES] = "";
  show->form = formOf(formsUsed++);
  const InputDescription description = describeForm(&show->form);
  const uint32_t x = 20 + 180 * (uint32_t)(show->index % 4);
  const uint32_t y = 40 + 200 * (uint32_t)(show->index / 4);
  show->block = library.create(error, 0, show->name, show->name, 0, &description, 1, x, y, 0, 0, 0,
                               0, 1, (uint8_t)isSynchronous(show));
  CHECK(show->block != NULL);
  library.start(show->block, error);
  CHECK(error[0] == '\0');
}

static void dropBlock(Show* show) {
  library.terminate(show->block);
  library.destroy(show->block);
}

/* Every eighth window covers the whole screen; the user's Escape ends that. */
static void openAgain(const Show* show) {
  const uint32_t position[2] = {100, 100};
  const uint32_t size[2] = {200, 150};
  ++closedByUser;
  library.createWindow(show->name, closedByUser % 8 == 0, position, size, 1);
}

/* Never destroys a synchronous window by name, because it would stay on the screen without its
 * record. */
static void destroyByName(Show* show) {
  dropBlock(show);
  if (!isSynchronous(show)) library.destroyWindow(show->name);
  makeBlock(show);
}

static void renameBackAndForth(const Show* show) {
  library.rename(show->name, "elsewhere", "elsewhere");
  library.rename("elsewhere", show->name, show->name);
}

static void useWindow(Show* show, unsigned step) {
  const uint32_t position[2] = {60, 60};
  const uint32_t size[2] = {240, 180};
  int32_t place[4];
  if (!library.isOpen(show->name)) openAgain(show);
  switch ((step + 8 * (unsigned)show->index) % STEPS_BETWEEN_DEEDS) {
    case 0:
      dropBlock(show);
      makeBlock(show);
      break;
    case 13:
      destroyByName(show);
      break;
    case 26:
      library.createWindow(show->name, 0, position, size, 1);
      break;
    case 39:
      library.getPosSize(show->name, place, place + 2);
      break;
    case 52:
      renameBackAndForth(show);
      break;
    default:
      break;
  }
}

static void sendFrame(const Show* show, unsigned step) {
  char error[FRAMESINK_ERROR_BYTES] = "";
  const FormFrame frame = frameOf(&show->form, step);
  library.update(show->block, error, frame.planes[0], frame.planes[1], frame.planes[2], frame.width,
                 frame.height);
  CHECK(error[0] == '\0');
  ++framesSent;
}

static long residentKilobytes(void) {
  FILE* const statm = fopen("/proc/self/statm", "r");
  long total, resident;
  CHECK(statm != NULL);
  CHECK(fscanf(statm, "%ld %ld", &total, &resident) == 2);
  fclose(statm);
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

/* `age` is 0 at the beginning of the load and 1 at its end. */
static void tell(int load, double age) {
  printf("%d,%.3f,%s,%s,%u,%u,%u,%u,%u,%ld,%d,%d\n", load, age, getenv("DISPLAY"), servers,
         framesSent, sdlCounts.shown, sdlCounts.events, sdlCounts.opened, closedByUser,
         residentKilobytes(), countDescriptors(), countThreads());
  fflush(stdout);
}

static void play(int load, double seconds) {
  const double begin = secondsNow();
  double next = begin;
  int told = 0;
  for (unsigned step = 1; secondsNow() < begin + seconds; ++step) {
    for (int i = 0; i < WINDOWS; ++i) {
      sendFrame(&shows[i], step);
      useWindow(&shows[i], step);
    }
    const double age = (secondsNow() - begin) / seconds;
    if (age * WORDS_PER_LOAD >= told + 0.5 && age < 1) {
      tell(load, age);
      told = (int)(age * WORDS_PER_LOAD + 0.5);
    }
    next += kStepSeconds;
    const double spare = next - secondsNow();
    if (spare > 0) sleepMilliseconds((long)(spare * 1000));
    if (spare < 0) next = secondsNow();
  }
}

static void runLoad(int load, double seconds, char** arguments) {
  setenv("DISPLAY", arguments[4 + load % 2], 1);
  library = loadLibrary(arguments[1]);
  passCallsOnToSdl();
  for (int i = 0; i < WINDOWS; ++i) {
    shows[i].index = i;
    snprintf(shows[i].name, sizeof shows[i].name, "soak %d", i);
    makeBlock(&shows[i]);
  }
  play(load, seconds);
  for (int i = 0; i < WINDOWS; ++i) dropBlock(&shows[i]);
  unloadLibrary(&library);
  CHECK(!isMapped("libframesink"));
  CHECK(!isMapped("libSDL2"));
}

static void chooseServers(const char* name) {
  servers = name;
  firstSynchronous = 6;
  if (strcmp(name, "threaded") == 0) firstSynchronous = WINDOWS;
  if (strcmp(name, "synchronous") == 0) firstSynchronous = 0;
}

static Leak leakOf(const char* name) {
  if (strcmp(name, "descriptor") == 0) return LEAK_DESCRIPTOR;
  if (strcmp(name, "memory") == 0) return LEAK_MEMORY;
  if (strcmp(name, "window") == 0) return LEAK_WINDOW;
  CHECK(strcmp(name, "none") == 0);
  return NO_LEAK;
}

int main(int count, char** arguments) {
  CHECK(count == 8);
  /* One heap for all threads, because several heaps fragment memory, which looks like growth. */
  CHECK(mallopt(M_ARENA_MAX, 1));
  chooseServers(arguments[6]);
  plantedLeak = leakOf(arguments[7]);
  makePlanes();
  const int loads = atoi(arguments[2]);
  for (int load = 0; load < loads; ++load) runLoad(load, atof(arguments[3]), arguments);
  return 0;
}
