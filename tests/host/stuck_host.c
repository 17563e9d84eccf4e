/* stuck_host LIBRARY DEED: opens windows A and B. At the first SIGUSR1 it requests window C, which
 * cannot be made then; at the second it does the deed. Ends with status 7 if all goes well. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "host.h"

enum { STATUS = 7, WINDOWS = 3 };
static const char* const names[WINDOWS] = {"stuck A", "stuck B", "stuck C"};

static Library library;
static void* blocks[WINDOWS];

/* ---- Set-up ---- */

static void* openWindow(int index) {
  const uint32_t x = 100 + 200 * (uint32_t)index;
  return createBlock(&library, (WindowRequest){names[index], x, 100, 1, 0});
}

static void awaitWindow(int index) {
  int32_t position[2], size[2];
  library.getPosSize(names[index], position, size);
  CHECK(size[0] == FRAME_WIDTH && size[1] == FRAME_HEIGHT);
}

static void showOnce(uint32_t colour) {
  Frame frame;
  fillFrame(&frame, colour);
  for (int i = 0; i < WINDOWS; ++i) updateBlock(&library, blocks[i], &frame);
}

static void raiseWindow(int index) {
  const uint32_t pair[2] = {100, 100};
  library.createWindow(names[index], 0, pair, pair, 0);
}

/* ---- Calls that do not wait ---- */

#define AT_ONCE(call)                  \
  do {                                 \
    const double start = secondsNow(); \
    call;                              \
    CHECK(secondsNow() - start < 1);   \
  } while (0)

static void callWhatDoesNotWait(void) {
  char error[FRAMESINK_ERROR_BYTES] = "";
  for (uint32_t number = 0; number < 100; ++number) AT_ONCE(showOnce(number));
  for (int i = 0; i < WINDOWS; ++i) AT_ONCE(CHECK(library.isOpen(names[i])));
  AT_ONCE(awaitWindow(0));
  AT_ONCE(raiseWindow(0));
  AT_ONCE(library.rename(names[0], names[0], "stuck A renamed"));
  for (int i = 0; i < WINDOWS; ++i) {
    AT_ONCE(library.start(blocks[i], error));
    AT_ONCE(library.outputs(blocks[i]));
    AT_ONCE(library.terminate(blocks[i]));
  }
  for (int i = 1; i < WINDOWS; ++i) {
    AT_ONCE(library.destroyWindow(names[i]));
    AT_ONCE(CHECK(!library.isOpen(names[i])));
  }
  for (int i = 0; i < WINDOWS; ++i) AT_ONCE(library.destroy(blocks[i]));
  say("no call waited");
  awaitSignal();
}

/* ---- Calls that wait for the window, or for the display pass that makes it ---- */

static void askForItsPlace(void) { awaitWindow(2); }

static void openItAgain(void) { raiseWindow(2); }

static void renameIt(void) { library.rename(names[2], names[2], "stuck C renamed"); }

static void openAnother(void) {
  library.destroy(createBlock(&library, (WindowRequest){"stuck D", 100, 300, 1, 0}));
}

/* ---- Ends ---- */

static void unload(void) {
  const double start = secondsNow();
  unloadLibrary(&library);
  const double seconds = secondsNow() - start;
  printf("unloading took %.2f s\n", seconds);
  CHECK(seconds < 2);
  CHECK(!isMapped("libframesink"));
  say("unloaded");
  awaitSignal();
}

static void leave(void) { exit(STATUS); }

/* ---- All together ---- */

typedef struct Deed {
  const char* name;
  void (*act)(void);
} Deed;

static const Deed deeds[] = {
    {"what-does-not-wait", callWhatDoesNotWait},
    {"ask-for-its-place", askForItsPlace},
    {"open-it-again", openItAgain},
    {"rename-it", renameIt},
    {"open-another", openAnother},
    {"unload", unload},
    {"leave", leave},
};

static const Deed* findDeed(const char* name) {
  for (size_t i = 0; i < sizeof deeds / sizeof *deeds; ++i) {
    if (strcmp(deeds[i].name, name) == 0) return &deeds[i];
  }
  return NULL;
}

int main(int count, char** arguments) {
  CHECK(count == 3);
  const Deed* const deed = findDeed(arguments[2]);
  CHECK(deed != NULL);
  holdSignal();
  library = loadLibrary(arguments[1]);
  for (int i = 0; i < 2; ++i) {
    blocks[i] = openWindow(i);
    awaitWindow(i);
  }
  say("open");
  awaitSignal();
  blocks[2] = openWindow(2);
  say("asked");
  awaitSignal();
  say("acting");
  deed->act();
  say("done");
  return STATUS;
}
