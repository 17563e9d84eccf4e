#include <dirent.h>
#include <dlfcn.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

#include "host.h"

static sigset_t theSignal(void) {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGUSR1);
  return set;
}

void holdSignal(void) {
  const sigset_t set = theSignal();
  CHECK(sigprocmask(SIG_BLOCK, &set, NULL) == 0);
}

void awaitSignal(void) {
  const sigset_t set = theSignal();
  int number = 0;
  CHECK(sigwait(&set, &number) == 0);
}

void sleepMilliseconds(long milliseconds) {
  const struct timespec duration = {milliseconds / 1000, milliseconds % 1000 * 1000000};
  nanosleep(&duration, NULL);
}

double secondsNow(void) {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return (double)now.tv_sec + (double)now.tv_nsec * 1e-9;
}

/* ---- The operating system's loader ---- */

void* openLibrary(const char* path) {
  void* const handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (handle == NULL) fprintf(stderr, "%s\n", dlerror());
  return handle;
}

void* findSymbol(void* handle, const char* name) { return dlsym(handle, name); }

void closeLibrary(void* handle) { CHECK(dlclose(handle) == 0); }

extern void __lsan_do_leak_check(void) __attribute__((weak));

void checkForLeaks(void) {
  if (__lsan_do_leak_check != NULL) __lsan_do_leak_check();
}

/* ---- This process as the operating system sees it ---- */

static int countEntries(const char* path) {
  DIR* const folder = opendir(path);
  CHECK(folder != NULL);
  int count = 0;
  for (const struct dirent* entry; (entry = readdir(folder)) != NULL;) {
    if (entry->d_name[0] != '.') ++count;
  }
  closedir(folder);
  return count;
}

int countThreads(void) { return countEntries("/proc/self/task"); }

int areThreadsGone(int before) {
#if defined(__SANITIZE_THREAD__)
  const int own = 1;
#elif defined(__has_feature)
  const int own = __has_feature(thread_sanitizer);
#else
  const int own = 0;
#endif
  const int now = countThreads();
  return now == before || now == before + own;
}

int countDescriptors(void) { return countEntries("/proc/self/fd") - 1; /* the walk's own */ }

int isMapped(const char* part) {
  FILE* const maps = fopen("/proc/self/maps", "r");
  CHECK(maps != NULL);
  char line[4096];
  int found = 0;
  while (!found && fgets(line, sizeof line, maps) != NULL) {
    const char* const path = strchr(line, '/');
    found = path != NULL && strstr(path, part) != NULL && strstr(line, " r-xp ") != NULL;
  }
  fclose(maps);
  return found;
}

int isUnloaded(const char* name) {
  char part[64];
  snprintf(part, sizeof part, "lib%s", name);
  return !isMapped(part);
}
