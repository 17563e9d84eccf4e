/* elsewhere_host LIBRARY HOW: has the library unloaded on another thread than the one that made a
 * synchronous window. HOW names that other thread:
 * - "thread": a thread of this program.
 * - "both": a thread of this program that has made such a window, too.
 * - "making": a thread of the operating system, because threaded windows are being made.
 * The first window's thread must survive the messages that the window gets later. */
#include <windows.h>

#include <string.h>

#include "host.h"

static Library library;

static void show(WindowRequest request) {
  Frame frame;
  fillFrame(&frame, 0x3060C0);
  void* const block = createBlock(&library, request);
  updateBlock(&library, block, &frame);
  library.destroy(block);
}

static DWORD WINAPI unload(void* ownWindow) {
  if (ownWindow != NULL) show((WindowRequest){ownWindow, 400, 100, 1, /*synchronous=*/1});
  unloadLibrary(&library);
  return 0;
}

static void unloadElsewhere(char* ownWindow) {
  const HANDLE thread = CreateThread(NULL, 0, unload, ownWindow, 0, NULL);
  CHECK(thread != NULL);
  CHECK(WaitForSingleObject(thread, 10000) == WAIT_OBJECT_0);
  CloseHandle(thread);
}

/* False if the windows were made so fast that this thread unloaded the library. */
static int unloadWhileWindowsAreMade(void) {
  static const char* const names[4] = {"making A", "making B", "making C", "making D"};
  for (uint32_t i = 0; i < 4; ++i) {
    library.destroy(createBlock(&library, (WindowRequest){names[i], 100 + 200 * i, 300, 1, 0}));
  }
  unloadLibrary(&library);
  return GetModuleHandleA("framesink") != NULL;
}

static void use(HWND window) {
  MSG message;
  SetWindowTextA(window, "left alone");
  MoveWindow(window, 200, 200, 300, 200, TRUE);
  RedrawWindow(window, NULL, NULL, RDW_INVALIDATE | RDW_UPDATENOW);
  SendMessageA(window, WM_CLOSE, 0, 0);
  while (PeekMessageA(&message, NULL, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
}

int main(int count, char** arguments) {
  CHECK(count == 3);
  HWND window;
  for (int isDone = 0; !isDone;) {
    library = loadLibrary(arguments[1]);
    show((WindowRequest){"elsewhere", 100, 100, 1, /*synchronous=*/1});
    window = FindWindowA(NULL, "elsewhere");
    CHECK(window != NULL);
    isDone = strcmp(arguments[2], "making") != 0 || unloadWhileWindowsAreMade();
  }
  if (strcmp(arguments[2], "thread") == 0) unloadElsewhere(NULL);
  if (strcmp(arguments[2], "both") == 0) unloadElsewhere("elsewhere, too");
  CHECK(isUnloaded("framesink"));
  CHECK(areThreadsGone(0));
  CHECK(GetModuleHandleA("SDL2") != NULL);
  use(window);
  CHECK(IsWindow(window));
  return 0;
}
