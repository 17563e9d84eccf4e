/* What the library asks of SDL, counted on the way: this program's functions of those names hide
 * SDL's from the library, and pass the calls on. */
#ifndef SDL_COUNTS_H
#define SDL_COUNTS_H

#include <stdatomic.h>

typedef struct SdlCounts {
  atomic_uint opened; /* windows */
  atomic_uint closed;
  atomic_uint shown; /* pictures, those drawn again included */
  atomic_uint events;
} SdlCounts;

extern SdlCounts sdlCounts;

/* With each window that is opened something is left behind on purpose, to see whether that is
 * noticed. */
typedef enum Leak { NO_LEAK, LEAK_DESCRIPTOR, LEAK_MEMORY, LEAK_WINDOW } Leak;
extern Leak plantedLeak;

/* After each load: where SDL is this time. */
void passCallsOnToSdl(void);

#endif
