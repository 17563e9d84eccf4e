/* Counts what the library asks of SDL: this program defines functions with SDL's names, which hide
 * SDL's from the library, count the calls and pass them on. */
#ifndef SDL_COUNTS_H
#define SDL_COUNTS_H

#include <stdatomic.h>

typedef struct SdlCounts {
  atomic_uint opened; /* windows */
  atomic_uint closed;
  atomic_uint shown; /* pictures, including those drawn again */
  atomic_uint events;
} SdlCounts;

extern SdlCounts sdlCounts;

/* Leaves something behind with each window that is opened, to check that the test notices it. */
typedef enum Leak { NO_LEAK, LEAK_DESCRIPTOR, LEAK_MEMORY, LEAK_WINDOW } Leak;
extern Leak plantedLeak;

/* Finds SDL's functions. Call it after each load, because SDL is loaded with the library. */
void passCallsOnToSdl(void);

#endif
