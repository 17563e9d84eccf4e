/* elsewhere_host LIBRARY: unloads the library on another thread than the one that made a synchronous window. Nothing may
 * happen to that thread when the window gets messages later. */
#include <windows.h>

#include <string.h>

#include "host.h"

static Library library;

static DWORD WINAPI unload(void* unused) {
  (void)unused;
  unloadLibrary(&library);
  return 0;
}

static void unloadElsewhere(void) {
  const HANDLE thread = CreateThread(NULL, 0, unload, NULL, 0, NULL);
  CHECK(thread != NULL);
  CHECK(WaitForSingleObject(thread, 10000) == WAIT_OBJECT_0);
  CloseHandle(thread);
}

static void show(WindowRequest request) {
  Frame frame;
  fillFrame(&frame, 0x3060C0);
  void* const block = createBlock(&library, request);
  updateBlock(&library, block, &frame);
  library.destroy(block);
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
  CHECK(count == 2);
  library = loadLibrary(arguments[1]);
  show((WindowRequest){"elsewhere", 100, 100, 1, /*synchronous=*/1});
  const HWND window = FindWindowA(NULL, "elsewhere");
  CHECK(window != NULL);
  unloadElsewhere();
  CHECK(isUnloaded("framesink"));
  CHECK(GetModuleHandleA("SDL2") != NULL);
  use(window);
  CHECK(IsWindow(window));
  return 0;
}
