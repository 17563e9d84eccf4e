/* talk_host LIBRARY MANNER: a host with a window of its own. It raises and renames the library's
 * windows from its thread, moves the focus back and forth, and unloads the library while one of its
 * windows has the focus. MANNER is "polite", or "busy" for a host that never handles its window's
 * messages. */
#include <windows.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "host.h"

/* LIMIT is in seconds; a busy machine may come near it, a hang takes longer. */
enum { ROUNDS = 200, LIMIT = 10 };

static HWND openOwnWindow(void) {
  const HWND window = CreateWindowA("STATIC", "the host's own", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                                    50, 400, 200, 150, NULL, NULL, GetModuleHandleA(NULL), NULL);
  CHECK(window != NULL);
  return window;
}

static int isBusy;

static void handleMessages(void) {
  MSG message;
  while (!isBusy && PeekMessageA(&message, NULL, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
}

static int compareSeconds(const void* left, const void* right) {
  const double difference = *(const double*)left - *(const double*)right;
  return (difference > 0) - (difference < 0);
}

/* Stores how long each round's three calls took, in seconds, in ascending order. */
static void talk(const Library* library, void* block, HWND own, double seconds[ROUNDS]) {
  static const uint32_t place[2] = {100, 100};
  char title[32];
  Frame frame;
  fillFrame(&frame, 0x3060C0);
  for (int round = 0; round < ROUNDS; ++round) {
    snprintf(title, sizeof title, "title %d", round);
    updateBlock(library, block, &frame);
    const double start = secondsNow();
    library->rename("talk A", "talk A", title);
    library->createWindow("talk A", 0, place, place, 0); /* raises */
    library->createWindow("talk B", 0, place, place, 0);
    seconds[round] = secondsNow() - start;
    if (round % 8 == 0) SetForegroundWindow(own);
    handleMessages();
  }
  qsort(seconds, ROUNDS, sizeof *seconds, compareSeconds);
}

static int hasTitle(const char* title) {
  const HWND window = FindWindowA(NULL, title);
  return window != NULL && GetWindowThreadProcessId(window, NULL) != GetCurrentThreadId();
}

/* The display thread sets the title in its next pass. */
static void awaitTitle(const char* title) {
  const double deadline = secondsNow() + 5;
  while (!hasTitle(title)) {
    CHECK(secondsNow() < deadline);
    handleMessages();
    sleepMilliseconds(1);
  }
}

/* These libraries must not be loaded: frames are drawn from memory, and nobody types text into the
 * windows. */
static void checkThatLittleIsLoaded(void) {
  static const char* const unwanted[] = {"opengl32", "d3d9", "d3d11", "d3d12", "msctf"};
  for (size_t i = 0; i < sizeof unwanted / sizeof *unwanted; ++i) {
    CHECK(GetModuleHandleA(unwanted[i]) == NULL);
  }
}

int main(int count, char** arguments) {
  CHECK(count == 3);
  isBusy = strcmp(arguments[2], "busy") == 0;
  const HWND own = openOwnWindow();
  Library library = loadLibrary(arguments[1]);
  void* const blocks[2] = {createBlock(&library, (WindowRequest){"talk A", 100, 100, 1, 0}),
                           createBlock(&library, (WindowRequest){"talk B", 400, 100, 1, 0})};
  int32_t position[2], size[2];
  library.getPosSize("talk A", position, size); /* waits for the windows */
  library.getPosSize("talk B", position, size);
  double seconds[ROUNDS];
  talk(&library, blocks[0], own, seconds);
  CHECK(seconds[ROUNDS - 1] < LIMIT);
  awaitTitle("title 199"); /* of a window of another thread */
  CHECK(FindWindowA(NULL, "talk A") == NULL);
  checkThatLittleIsLoaded();
  const double start = secondsNow();
  library.destroy(blocks[0]);
  library.destroy(blocks[1]);
  unloadLibrary(&library);
  CHECK(isUnloaded("framesink"));
  CHECK(areThreadsGone(0));
  const double unloading = secondsNow() - start;
  CHECK(unloading < LIMIT);
  CHECK(FindWindowA(NULL, "title 199") == NULL);
  handleMessages();
  CHECK(IsWindow(own));
  printf("title and two raises take %.1f ms (median) to %.1f ms, unloading %.1f ms\n",
         seconds[ROUNDS / 2] * 1e3, seconds[ROUNDS - 1] * 1e3, unloading * 1e3);
  return 0;
}
