/* exit_windows_host LIBRARY DISPLAY ENDING: shows two windows and exits with status 7 while they
 * are open. DISPLAY is threaded, synchronous or both. */
#include <windows.h>

#include <stdlib.h>
#include <string.h>

#include "host.h"

enum { STATUS = 7 };

static Library library;
static void* blocks[2];

static void openWindows(const char* display) {
  const uint8_t synchronous = strcmp(display, "synchronous") == 0;
  const uint8_t both = strcmp(display, "both") == 0;
  CHECK(both || synchronous || strcmp(display, "threaded") == 0);
  blocks[0] = createBlock(&library, (WindowRequest){"exit A", 100, 100, 1, synchronous});
  blocks[1] = createBlock(&library, (WindowRequest){"exit B", 400, 100, 1, synchronous || both});
}

static void showOnce(uint32_t colour) {
  Frame frame;
  fillFrame(&frame, colour);
  updateBlock(&library, blocks[0], &frame);
  updateBlock(&library, blocks[1], &frame);
}

/* The library must still work here, because it ends after the program's own exit handlers. */
static void useAtExit(void) {
  int32_t position[2], size[2];
  CHECK(library.isOpen("exit A"));
  showOnce(0xC06030);
  library.getPosSize("exit B", position, size);
  CHECK(size[0] == FRAME_WIDTH && size[1] == FRAME_HEIGHT);
  library.destroyWindow("exit A");
  CHECK(!library.isOpen("exit A"));
  say("used at exit");
}

static DWORD WINAPI leave(void* unused) {
  (void)unused;
  say("leaving");
  exit(STATUS);
}

/* The process ends while this thread, which shows frames, is inside the library. */
static void pumpUntilEnded(void) {
  CHECK(CreateThread(NULL, 0, leave, NULL, 0, NULL) != NULL);
  for (uint32_t colour = 0;; ++colour) showOnce(colour);
}

int main(int count, char** arguments) {
  CHECK(count == 4);
  library = loadLibrary(arguments[1]);
  openWindows(arguments[2]);
  showOnce(0x3060C0);
  int32_t position[2], size[2];
  library.getPosSize("exit A", position, size);
  if (strcmp(arguments[3], "exit-at-once") != 0) library.getPosSize("exit B", position, size);
  if (strcmp(arguments[3], "exit-handler") == 0) CHECK(atexit(useAtExit) == 0);
  if (strcmp(arguments[3], "exit-from-thread") == 0) pumpUntilEnded();
  if (strcmp(arguments[3], "return") != 0) leave(NULL);
  say("leaving");
  return STATUS;
}
