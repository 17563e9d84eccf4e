/* What the hosts of these tests share: the library as they load it, frames, and checks.
 *
 * The hosts are written in C and know the library by its header alone. */
#ifndef HOST_H
#define HOST_H

#include <stddef.h>
#include <stdint.h>

#include "framesink/framesink.h"

/* ---- Checks
 * -------------------------------------------------------------------------------------- */

/* Ends the process with status 3, without exit handlers, unless the condition holds. */
#define CHECK(condition) checkThat((condition) != 0, #condition, __FILE__, __LINE__)
void checkThat(int holds, const char* condition, const char* file, int line);

/* Writes a line to standard output at once: the test waits for it. */
void say(const char* text);

/* A locale that is not the one of the process's beginning, or the nearest to it. */
#if defined(_WIN32)
#define HOST_LOCALE "English"
#else
#define HOST_LOCALE "C.UTF-8"
#endif

/* From here to the library, and at the end: host_posix.c and host_windows.c. */
void sleepMilliseconds(long milliseconds);
double secondsNow(void);

/* Tells the loader's complaint on standard error; null then. */
void* openLibrary(const char* path);
void* findSymbol(void* handle, const char* name); /* null when there is none */
void closeLibrary(void* handle);

/* ---- The library
 * --------------------------------------------------------------------------------- */

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

/* In a build that looks for leaks: looks now, and not again at the end of the process. What is left
 * behind on purpose can be told from leaks only while the library is there. */
void checkForLeaks(void);

void unloadLibrary(Library* library);

/* The string that a data export points to. */
const char* libraryText(const Library* library, const char* name);

/* ---- Frames and blocks
 * --------------------------------------------------------------------------- */

enum { FRAME_WIDTH = 64, FRAME_HEIGHT = 48, FRAME_SAMPLES = FRAME_WIDTH * FRAME_HEIGHT };

typedef struct Frame {
  uint8_t planes[3][FRAME_SAMPLES];
} Frame;

/* 0x00RRGGBB all over. */
void fillFrame(Frame* frame, uint32_t colour);

/* RGB planes of uint8. */
InputDescription describeFrames(void);

typedef struct WindowRequest {
  const char* name; /* of window, record and title */
  uint32_t x, y;
  uint8_t open;
  uint8_t synchronous;
} WindowRequest;

/* Creates and starts; checks that no error is reported. */
void* createBlock(const Library* library, WindowRequest request);
void updateBlock(const Library* library, void* block, const Frame* frame);

/* Shows `colour` in the block's window until the user closes it. */
void showUntilClosed(const Library* library, void* block, const char* name, uint32_t colour);

/* ---- This process as the system sees it
 * ---------------------------------------------------------- */

int countThreads(void);

/* None but those counted before, and one that the thread sanitizer keeps for itself. */
int areThreadsGone(int before);

#if defined(_WIN32)
/* Waits until nobody but the host itself holds that library. Under Wine only: Windows does not tell. */
int isHeldOnce(const char* name);
#else
/* The test gives the word to go on by SIGUSR1. Held from before the library is loaded, so that no
 * thread takes it, and waited for. */
void holdSignal(void);
void awaitSignal(void);

int countDescriptors(void);
/* Code of a file whose path holds `part`: a sanitizer may map such a file to read its symbols. */
int isMapped(const char* part);
#endif

/* "SDL2" and its like: no code of that library is left. Windows may still be about it: waits. */
int isUnloaded(const char* name);

#endif
