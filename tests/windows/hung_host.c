/* hung_host LIBRARY: a program that hangs on the display thread, in its own message handler for one
 * of the library's windows. Only unloading waits for that, and gives up after 20 s. Exits with
 * status 7. */
#include <windows.h>

#include <stdio.h>
#include <stdlib.h>

#include "host.h"

enum { STATUS = 7, HANG = WM_USER + 1 };

static volatile LONG isHung;
static WNDPROC sdlsOwn;

static LRESULT CALLBACK hangWhenTold(HWND window, UINT message, WPARAM word, LPARAM value) {
  if (message != HANG) return CallWindowProcA(sdlsOwn, window, message, word, value);
  InterlockedExchange(&isHung, 1);
  Sleep(INFINITE);
  return 0;
}

static HWND hang(const char* title) {
  const HWND window = FindWindowA(NULL, title);
  CHECK(window != NULL);
  sdlsOwn = (WNDPROC)SetWindowLongPtrA(window, GWLP_WNDPROC, (LONG_PTR)hangWhenTold);
  CHECK(sdlsOwn != NULL);
  CHECK(PostMessageA(window, HANG, 0, 0));
  while (!isHung) Sleep(1);
  return window;
}

static void callWhatDoesNotWait(const Library* library, void* block) {
  Frame frame;
  const double start = secondsNow();
  for (uint32_t colour = 0; colour < 100; ++colour) {
    fillFrame(&frame, colour);
    updateBlock(library, block, &frame);
  }
  CHECK(library->isOpen("hung"));
  library->destroyWindow("hung");
  CHECK(!library->isOpen("hung"));
  library->destroy(block);
  CHECK(secondsNow() - start < 1);
}

int main(int count, char** arguments) {
  CHECK(count == 2);
  Library library = loadLibrary(arguments[1]);
  void* const block = createBlock(&library, (WindowRequest){"hung", 100, 100, 1, 0});
  int32_t position[2], size[2];
  library.getPosSize("hung", position, size); /* waits for the window */
  CHECK(isHeldOnce("framesink"));
  const HWND window = hang("hung");
  callWhatDoesNotWait(&library, block);
  const double start = secondsNow();
  unloadLibrary(&library);
  const double seconds = secondsNow() - start;
  printf("unloading took %.2f s\n", seconds);
  fflush(stdout);
  CHECK(seconds >= 19 && seconds <= 25);
  CHECK(GetModuleHandleA("framesink") == NULL);
  CHECK(IsWindow(window));
  say("unloaded");
  TerminateProcess(GetCurrentProcess(), STATUS);
  return 0;
}
