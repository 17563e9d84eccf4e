/* What the hosts of these tests share: loading the library, frames and checks.
 *
 * The hosts are written in C and know the library by its header alone. */
#ifndef HOST_H
#define HOST_H

#include <stddef.h>
#include <stdint.h>

#include "framesink/framesink.h"

/* ---- Checks ---- */

/* Ends the process with status 3, without running exit handlers, unless the condition holds. */
#define CHECK(condition) checkThat((condition) != 0, #condition, __FILE__, __LINE__)
void checkThat(int holds, const char* condition, const char* file, int line);

/* Prints a line on standard output and flushes it, because the test waits for it. */
void say(const char* text);

/* A locale other than "C", with which a process starts. */
#if defined(_WIN32)
#define HOST_LOCALE "English"
#else
#define HOST_LOCALE "C.UTF-8"
#endif

/* host_posix.c and host_windows.c define these functions and those at the end of this header. */
void sleepMilliseconds(long milliseconds);
double secondsNow(void);

/* Prints the loader's message on standard error and returns null if loading fails. */
void* openLibrary(const char* path);
void* findSymbol(void* handle, const char* name); /* null if there is none */
void closeLibrary(void* handle);

/* ---- The library ---- */

typedef struct Library {
  void* handle;
  __typeof__(libCreate)* create;
  __typeof__(libStart)* start;
  __typeof__(libUpdate)* update;
  __typeof__(libOutputs)* outputs;
  __typeof__(libTerminate)* terminate;
  __typeof__(libDestroy)* destroy;
  __typeof__(createVideoWindow)* createWindow;
  __typeof__(destroyVideoWindow)* destroyWindow;
  __typeof__(getWindowPosSize)* getPosSize;
  __typeof__(isPlayerOpen)* isOpen;
  __typeof__(renameVideoWindow)* rename;
} Library;

Library loadLibrary(const char* path);

/* With the leak sanitizer: checks for leaks now instead of at the end of the process. What is left
 * behind on purpose can be told from leaks only while the library is loaded. */
void checkForLeaks(void);

void unloadLibrary(Library* library);

/* The string that a data export points to. */
const char* libraryText(const Library* library, const char* name);

/* ---- Frames and blocks ---- */

enum { FRAME_WIDTH = 64, FRAME_HEIGHT = 48, FRAME_SAMPLES = FRAME_WIDTH * FRAME_HEIGHT };

typedef struct Frame {
  uint8_t planes[3][FRAME_SAMPLES];
} Frame;

/* Gives every pixel the colour 0x00RRGGBB. */
void fillFrame(Frame* frame, uint32_t colour);

/* Describes three uint8 planes of RGB. */
InputDescription describeFrames(void);

typedef struct WindowRequest {
  const char* name; /* of the record; also the window's title */
  uint32_t x, y;
  uint8_t open;
  uint8_t synchronous;
} WindowRequest;

/* Creates and starts a block; CHECKs that the library reports no error. */
void* createBlock(const Library* library, WindowRequest request);
void updateBlock(const Library* library, void* block, const Frame* frame);

/* Shows `colour` in the block's window until the user closes it. */
void showUntilClosed(const Library* library, void* block, const char* name, uint32_t colour);

/* ---- This process as the operating system sees it ---- */

int countThreads(void);

/* True if only the threads counted before are left, and the thread sanitizer's own. */
int areThreadsGone(int before);

#if defined(_WIN32)
/* Waits until only the host holds that library. Under Wine only: Windows has no such count. */
int isHeldOnce(const char* name);
#else
/* The test sends SIGUSR1 when the host shall go on, and awaitSignal() waits for it. Call
 * holdSignal() before the library is loaded: it blocks the signal, so that no thread takes it. */
void holdSignal(void);
void awaitSignal(void);

int countDescriptors(void);
/* True if code of a file whose path contains `part` is mapped. Only code counts, because a
 * sanitizer may map such a file to read its symbols. */
int isMapped(const char* part);
#endif

/* True if no code of the library is left; `name` is like "SDL2". Waits on Windows, which may still
 * be unloading it. */
int isUnloaded(const char* name);

#endif
