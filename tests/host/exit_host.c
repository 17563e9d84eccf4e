/* exit_host LIBRARY DISPLAY ENDING: shows two windows and then ends, or is ended, as ENDING says.
 * Its own status is 7 if all goes well. DISPLAY is threaded, synchronous, both, or closed for no
 * windows. */
#include <pthread.h>
#include <signal.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host.h"
#include "uncaught.h"

enum { STATUS = 7 };

static Library library;
static void* blocks[2];
static const char* const names[2] = {"exit A", "exit B"};

static void openWindows(const char* display) {
  const uint8_t both = strcmp(display, "both") == 0;
  const uint8_t closed = strcmp(display, "closed") == 0;
  const uint8_t synchronous = strcmp(display, "synchronous") == 0;
  CHECK(both || closed || synchronous || strcmp(display, "threaded") == 0);
  blocks[0] = createBlock(&library, (WindowRequest){names[0], 100, 100, closed == 0, synchronous});
  blocks[1] =
      createBlock(&library, (WindowRequest){names[1], 300, 100, closed == 0, synchronous || both});
}

static void showOnce(uint32_t colour) {
  Frame frame;
  fillFrame(&frame, colour);
  updateBlock(&library, blocks[0], &frame);
  updateBlock(&library, blocks[1], &frame);
}

/* ---- Endings that the host chooses ---- */

static void leave(void) {
  say("leaving");
  exit(STATUS);
}

static atomic_int pumped; /* frames delivered */

static void* leaveFromThread(void* unused) {
  while (pumped < 10) sleepMilliseconds(1);
  leave();
  return unused;
}

static void pump(void) {
  for (uint32_t colour = 0;; ++colour, ++pumped) showOnce(colour);
}

static void pumpSlowly(void) {
  for (uint32_t colour = 0;; ++colour) {
    showOnce(colour);
    sleepMilliseconds(1);
  }
}

/* ---- The display is lost ---- */

static int isAnyOpen(void) { return library.isOpen(names[0]) || library.isOpen(names[1]); }

/* All calls must return at once, and no window may come back. */
static void useLostWindows(void) {
  const uint32_t place[2] = {10, 10};
  int32_t pairs[4] = {1, 2, 3, 4};
  char error[FRAMESINK_ERROR_BYTES] = "";
  const InputDescription description = describeFrames();
  const double start = secondsNow();
  for (uint32_t colour = 0; colour < 100; ++colour) showOnce(colour);
  for (int i = 0; i < 2; ++i) {
    library.getPosSize(names[i], pairs, pairs + 2);
    for (int k = 0; k < 4; ++k) CHECK(pairs[k] == -2);
    library.createWindow(names[i], 0, place, place, 0);
    CHECK(!library.isOpen(names[i]));
  }
  void* const block =
      library.create(error, 0, "late", "late", 0, &description, 1, 10, 10, 0, 0, 0, 0, 0, 0);
  CHECK(block != NULL && error[0] == '\0' && !library.isOpen("late"));
  library.destroy(block);
  library.rename(names[0], "renamed", "renamed");
  library.destroyWindow("renamed");
  CHECK(secondsNow() - start < 1);
}

static void unloadAndLeave(void) {
  const double start = secondsNow();
  unloadLibrary(&library);
  CHECK(secondsNow() - start < 1);
  CHECK(!isMapped("libframesink"));
  leave();
}

static void outliveWithFrames(void) {
  for (uint32_t colour = 0; isAnyOpen(); ++colour) {
    showOnce(colour);
    sleepMilliseconds(1);
  }
  useLostWindows();
  unloadAndLeave();
}

static void outliveIdle(void) {
  while (isAnyOpen()) sleepMilliseconds(1);
  useLostWindows();
  leave();
}

static void leaveWithoutHandlers(void) {
  say("leaving");
  _exit(STATUS);
}

/* Ends by SIGABRT, without a core file. */
static void throwException(void) {
  const struct rlimit none = {0, 0};
  CHECK(setrlimit(RLIMIT_CORE, &none) == 0);
  say("leaving");
  throwUncaught();
}

/* ---- Calls from exit handlers ---- */

static void callEverything(void) {
  const InputDescription description = describeFrames();
  const uint32_t place[2] = {10, 10};
  int32_t pairs[4] = {1, 2, 3, 4};
  char error[FRAMESINK_ERROR_BYTES] = "";
  Frame frame;
  fillFrame(&frame, 0xFF0000);
  void* const block =
      library.create(error, 0, "late", "late", 0, &description, 1, 10, 10, 0, 0, 0, 0, 0, 0);
  printf("late block: %s\n", block != NULL ? "made" : "none");
  library.start(block, error);
  if (block != NULL) updateBlock(&library, block, &frame);
  updateBlock(&library, blocks[0], &frame);
  updateBlock(&library, blocks[1], &frame);
  library.createWindow(names[0], 0, place, place, 0);
  library.getPosSize(names[0], pairs, pairs + 2);
  printf("late size: %d\n", pairs[2]);
  printf("late window: %s\n", library.isOpen(names[0]) ? "open" : "closed");
  library.rename(names[0], "late name", "late title");
  library.destroyWindow("late name");
  library.outputs(blocks[0]);
  library.terminate(blocks[0]);
  library.destroy(block);
  library.destroy(blocks[0]);
  library.destroy(blocks[1]);
  say("late calls done");
}

/* ---- Endings that the host does not choose ---- */

static volatile sig_atomic_t handled;

static void noteSignal(int number) { handled = number; }

static void installHandlers(void) {
  struct sigaction action;
  memset(&action, 0, sizeof action);
  action.sa_handler = noteSignal;
  CHECK(sigaction(SIGINT, &action, NULL) == 0 && sigaction(SIGTERM, &action, NULL) == 0);
}

static void pumpUntilHandled(void) {
  while (!handled) {
    showOnce(0x808080);
    sleepMilliseconds(1);
  }
  printf("handled %d\n", (int)handled);
  leave();
}

/* The end of a forked child must leave the windows to its parent. */
static void forkAndGoOn(void) {
  const double start = secondsNow();
  const pid_t child = fork();
  CHECK(child >= 0);
  if (child == 0) exit(5);
  int status = 0;
  CHECK(waitpid(child, &status, 0) == child);
  CHECK(WIFEXITED(status) && WEXITSTATUS(status) == 5);
  CHECK(secondsNow() - start < 10); /* unloading waits up to 20 s; a child does not */
  CHECK(library.isOpen(names[0]) && library.isOpen(names[1]));
  say("forked");
  showUntilClosed(&library, blocks[0], names[0], 0x30C060);
  leave();
}

/* ---- All together ---- */

typedef struct Ending {
  const char* name;
  void (*beforeLoad)(void);
  void (*beforeUse)(void);
  void (*afterUse)(void);
} Ending;

static void callAtExit(void) { CHECK(atexit(callEverything) == 0); }

static void startLeavingThread(void) {
  pthread_t thread;
  CHECK(pthread_create(&thread, NULL, leaveFromThread, NULL) == 0);
  pump();
}

static void callAtExitAndLeave(void) {
  callAtExit();
  leave();
}

static const Ending endings[] = {
    {"return", NULL, NULL, NULL},
    {"exit", NULL, NULL, leave},
    {"exit-from-thread", NULL, NULL, startLeavingThread},
    {"_exit", NULL, NULL, leaveWithoutHandlers},
    {"exception", NULL, NULL, throwException},
    {"late-calls-before-load", callAtExit, NULL, leave},
    {"late-calls-before-use", NULL, callAtExit, leave},
    {"late-calls-after-use", NULL, NULL, callAtExitAndLeave},
    {"pump", NULL, NULL, pumpSlowly},
    {"outlive-with-frames", NULL, NULL, outliveWithFrames},
    {"outlive-idle", NULL, NULL, outliveIdle},
    {"handlers-before-load", installHandlers, NULL, pumpUntilHandled},
    {"handlers-before-use", NULL, installHandlers, pumpUntilHandled},
    {"fork", NULL, NULL, forkAndGoOn},
};

static const Ending* findEnding(const char* name) {
  for (size_t i = 0; i < sizeof endings / sizeof *endings; ++i) {
    if (strcmp(endings[i].name, name) == 0) return &endings[i];
  }
  return NULL;
}

int main(int count, char** arguments) {
  CHECK(count == 4);
  const Ending* const ending = findEnding(arguments[3]);
  CHECK(ending != NULL);
  if (ending->beforeLoad != NULL) ending->beforeLoad();
  library = loadLibrary(arguments[1]);
  if (ending->beforeUse != NULL) ending->beforeUse();
  openWindows(arguments[2]);
  showOnce(0x3060C0);
  say("showing");
  if (ending->afterUse != NULL) ending->afterUse();
  say("leaving");
  return STATUS;
}
