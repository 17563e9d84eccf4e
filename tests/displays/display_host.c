/* display_host LIBRARY: a model whose display fails. It sends a frame to each of its windows every
 * 10 ms, and does what it is told on standard input; commands[] lists the commands. It answers each
 * command by a line that begins with "=", and reports every second by a line that begins with ".".
 * Every call of the library is timed. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "command_lines.h"
#include "host.h"
#include "process_facts.h"

enum { MAX_WINDOWS = 8, PERIOD_MILLISECONDS = 10 };

typedef struct View {
  char name[64];
  void* block;
  uint8_t synchronous;
  uint32_t width, height;
  uint8_t* planes[3]; /* column-major */
} View;

static const char* path;
static Library library; /* handle is null while the library is not loaded */
static View views[MAX_WINDOWS];
static int viewCount = 0;
static int churned[2] = {0, 0}; /* threaded, synchronous */
static unsigned pictureNumber = 1;
static unsigned long frames = 0, cycles = 0;

/* ---- How long calls take ---- */

typedef struct Longest {
  double milliseconds;
  const char* call;
} Longest;

static Longest ofSecond = {0, "none"}, sinceFacts = {0, "none"};

static void note(const char* call, double start) {
  const Longest now = {(secondsNow() - start) * 1000, call};
  if (now.milliseconds > ofSecond.milliseconds) ofSecond = now;
  if (now.milliseconds > sinceFacts.milliseconds) sinceFacts = now;
}

#define TIMED(name, call)              \
  do {                                 \
    const double start = secondsNow(); \
    call;                              \
    note(#name, start);                \
  } while (0)

/* ---- Pictures ---- */

static void paint(View* view) {
  for (int plane = 0; plane < 3; ++plane) {
    uint8_t* sample = view->planes[plane];
    for (uint32_t column = 0; column < view->width; ++column) {
      for (uint32_t row = 0; row < view->height; ++row) {
        *sample++ = sampleOf(plane, row, column, pictureNumber);
      }
    }
  }
}

static void send(View* view) {
  char error[FRAMESINK_ERROR_BYTES + 1] = "";
  TIMED(libUpdate,
        library.update(view->block, error, view->planes[0], view->planes[1], view->planes[2],
                       FRAMESINK_CONFIGURED_SIZE, FRAMESINK_CONFIGURED_SIZE));
  CHECK(error[0] == '\0');
  ++frames;
}

/* ---- Windows ---- */

static void createAt(View* view, uint32_t x, uint32_t y) {
  InputDescription description = {
      .valid = 1, .inputCount = 3, .componentCount = 3, .dataType = FRAMESINK_UINT8, .layout = 1};
  for (int plane = 0; plane < 3; ++plane) {
    description.widths[plane] = view->width;
    description.heights[plane] = view->height;
  }
  char error[FRAMESINK_ERROR_BYTES + 1] = "";
  TIMED(libCreate, view->block = library.create(error, 0, view->name, view->name, 0, &description,
                                                1, x, y, 0, 0, 0, 0, 0, view->synchronous));
  CHECK(view->block != NULL);
  TIMED(libStart, library.start(view->block, error));
  CHECK(error[0] == '\0');
}

static void createView(View* view, uint32_t x, uint32_t y) {
  for (int plane = 0; plane < 3; ++plane) {
    view->planes[plane] = malloc((size_t)view->width * view->height);
    CHECK(view->planes[plane] != NULL);
  }
  paint(view);
  createAt(view, x, y);
}

static void destroyView(View* view) {
  TIMED(libTerminate, library.terminate(view->block));
  TIMED(libDestroy, library.destroy(view->block));
  for (int plane = 0; plane < 3; ++plane) free(view->planes[plane]);
}

/* Another frame size under the same name closes the old window and opens a new one. */
static void churn(uint8_t synchronous) {
  const uint32_t odd = cycles % 2;
  View view = {.synchronous = synchronous, .width = 64 + odd, .height = 48 + odd};
  snprintf(view.name, sizeof view.name, "churn %d", synchronous);
  createView(&view, 500, 20 + 100u * synchronous);
  send(&view);
  /* The display thread closes only its own windows by name. */
  if (cycles % 5 == 4 && !synchronous) {
    TIMED(destroyVideoWindow, library.destroyWindow(view.name));
  }
  destroyView(&view);
  ++cycles;
}

/* ---- Commands: each prints its answer ---- */

static void openView(const char* words) { /* NAME SYNCHRONOUS WIDTH HEIGHT X Y */
  CHECK(viewCount < MAX_WINDOWS);
  View* const view = &views[viewCount];
  unsigned synchronous, x, y;
  CHECK(sscanf(words, "%63s %u %u %u %u %u", view->name, &synchronous, &view->width, &view->height,
               &x, &y) == 6);
  view->synchronous = (uint8_t)synchronous;
  createView(view, x, y);
  ++viewCount;
  say("= opened");
}

static void closeView(const char* name) {
  TIMED(destroyVideoWindow, library.destroyWindow(name));
  for (int i = 0; i < viewCount; ++i) {
    if (strcmp(views[i].name, name) != 0) continue;
    destroyView(&views[i]);
    views[i] = views[--viewCount];
  }
  say("= closed");
}

static void openAgain(const char* name) {
  const uint32_t position[2] = {20, 20}, size[2] = {64, 48};
  TIMED(createVideoWindow, library.createWindow(name, 0, position, size, 0));
  say("= requested");
}

static void renameView(const char* words) {
  char old[64], new[64];
  CHECK(sscanf(words, "%63s %63s", old, new) == 2);
  TIMED(renameVideoWindow, library.rename(old, new, new));
  say("= renamed");
}

/* Whether it is open, its place and its size. */
static void printState(const char* name) {
  int32_t position[2] = {-1, -1}, size[2] = {-1, -1};
  int open;
  TIMED(isPlayerOpen, open = library.isOpen(name));
  TIMED(getWindowPosSize, library.getPosSize(name, position, size));
  printf(" %d %d %d %d %d", open, position[0], position[1], size[0], size[1]);
}

static void askFor(const char* name) {
  printf("=");
  printState(name);
  say("");
}

static void changePicture(const char* number) {
  pictureNumber = (unsigned)atoi(number);
  for (int i = 0; i < viewCount; ++i) paint(&views[i]);
  say("= painted");
}

static void setChurn(const char* words) { /* THREADED SYNCHRONOUS, each 0 or 1 */
  CHECK(sscanf(words, "%d %d", &churned[0], &churned[1]) == 2);
  say("= churning");
}

static void setDisplay(const char* name) {
  CHECK(setenv("DISPLAY", name, 1) == 0);
  say("= set");
}

static void unload(const char* nothing) {
  (void)nothing;
  while (viewCount > 0) destroyView(&views[--viewCount]);
  churned[0] = churned[1] = 0;
  const double start = secondsNow();
  unloadLibrary(&library);
  printf("= %.1f %d\n", (secondsNow() - start) * 1000, isMapped("libframesink"));
  fflush(stdout);
}

static void reload(const char* nothing) {
  (void)nothing;
  library = loadLibrary(path);
  say("= loaded");
}

/* Milliseconds of the longest call since the last facts, its name, frames, cycles, descriptors,
 * threads, resident KiB, processor milliseconds of the other threads. */
static void printFacts(const char* nothing) {
  (void)nothing;
  printf("= %.1f %s %lu %lu %d %d %ld %ld\n", sinceFacts.milliseconds, sinceFacts.call, frames,
         cycles, countDescriptors(), countThreads(), residentKibibytes(),
         otherThreadsMilliseconds());
  fflush(stdout);
  sinceFacts = (Longest){0, "none"};
}

static void leave(const char* status) { exit(atoi(status)); }

typedef struct Command {
  const char* name;
  void (*act)(const char* words);
} Command;

static const Command commands[] = {
    {"open", openView}, {"close", closeView},  {"again", openAgain},    {"rename", renameView},
    {"ask", askFor},    {"facts", printFacts}, {"churn", setChurn},     {"picture", changePicture},
    {"unload", unload}, {"reload", reload},    {"display", setDisplay}, {"exit", leave},
};

static void obey(char* line) {
  char* const space = strchr(line, ' ');
  if (space != NULL) *space = '\0';
  for (size_t i = 0; i < sizeof commands / sizeof *commands; ++i) {
    if (strcmp(commands[i].name, line) != 0) continue;
    commands[i].act(space != NULL ? space + 1 : "");
    return;
  }
  const int isCommandKnown = 0;
  CHECK(isCommandKnown);
}

/* ---- The model ---- */

static void step(void) {
  if (library.handle == NULL) return;
  for (int i = 0; i < viewCount; ++i) send(&views[i]);
  for (uint8_t synchronous = 0; synchronous < 2; ++synchronous) {
    if (churned[synchronous]) churn(synchronous);
  }
}

static void report(double* last) {
  if (secondsNow() - *last < 1) return;
  *last = secondsNow();
  printf(". frames %lu longest %.1f %s", frames, ofSecond.milliseconds, ofSecond.call);
  for (int i = 0; i < viewCount; ++i) {
    printf(" %s", views[i].name);
    printState(views[i].name);
  }
  say("");
  ofSecond = (Longest){0, "none"};
}

int main(int count, char** arguments) {
  CHECK(count == 2);
  path = arguments[1];
  library = loadLibrary(path);
  say("= ready");
  double last = secondsNow(), next = last;
  for (;;) {
    const double left = (next - secondsNow()) * 1000;
    char* const line = nextCommand(left > 0 ? (long)left + 1 : 0);
    if (line != NULL) obey(line);
    if (secondsNow() < next) continue;
    step();
    report(&last);
    next = secondsNow() + PERIOD_MILLISECONDS / 1000.0;
  }
}
