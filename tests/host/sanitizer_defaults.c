/* The sanitizers' options for hosts, built in so that they apply however a host is started. */
#include <unistd.h>

#define FOR_SANITIZER __attribute__((visibility("default"), used))

FOR_SANITIZER const char* __tsan_default_options(void);
FOR_SANITIZER const char* __asan_default_options(void);
FOR_SANITIZER const char* __lsan_default_suppressions(void);
FOR_SANITIZER int __lsan_is_turned_off(void);

/* By design nobody joins the display thread, although it has ended when the library is gone. There
 * is no sleep at exit, because tests measure how long these hosts take to end. */
const char* __tsan_default_options(void) { return "report_thread_leaks=0:atexit_sleep_ms=0"; }

/* SDL is built without frame pointers, so a fast unwind cannot find who allocated. */
const char* __asan_default_options(void) { return "fast_unwind_on_malloc=0"; }

/* Because the thread is not joined, SDL keeps its small record of it. D-Bus keeps a connection's
 * buffer for the life of the process; SDL's X11 driver uses D-Bus and cannot free that buffer. */
const char* __lsan_default_suppressions(void) {
  return "leak:framesink::DisplayThread::start\n"
         "leak:libdbus-1.so\n";
}

static pid_t process;
__attribute__((constructor)) static void noteProcess(void) { process = getpid(); }

/* A forked child frees nothing on purpose, because everything belongs to its parent. */
int __lsan_is_turned_off(void) { return getpid() != process; }
