/* How sanitizers treat the hosts, wherever these are started from. */
#include <unistd.h>

#define FOR_SANITIZER __attribute__((visibility("default"), used))

FOR_SANITIZER const char* __tsan_default_options(void);
FOR_SANITIZER const char* __asan_default_options(void);
FOR_SANITIZER const char* __lsan_default_suppressions(void);
FOR_SANITIZER int __lsan_is_turned_off(void);

/* The display thread has ended when the library is gone, but nobody joins it: by design. And these
 * hosts' ends are timed. */
const char* __tsan_default_options(void) { return "report_thread_leaks=0:atexit_sleep_ms=0"; }

/* SDL keeps no frame pointers, by which allocations are else traced back to those who asked. */
const char* __asan_default_options(void) { return "fast_unwind_on_malloc=0"; }

/* Since the thread is not joined, SDL's small record of it is left behind. D-Bus keeps a
 * connection's buffer for the life of the process; SDL, whose X11 driver uses it, cannot give it
 * back. */
const char* __lsan_default_suppressions(void) {
  return "leak:framesink::DisplayThread::start\n"
         "leak:libdbus-1.so\n";
}

static pid_t process;
__attribute__((constructor)) static void noteProcess(void) { process = getpid(); }

/* A fork leaves everything in place on purpose: it is its parent's. */
int __lsan_is_turned_off(void) { return getpid() != process; }
