#include "process_facts.h"

#include <dirent.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "host.h"

/* Returns 0 if the thread has ended meanwhile. */
static long threadTicks(const char* thread) {
  char path[300], line[1024];
  snprintf(path, sizeof path, "/proc/self/task/%s/stat", thread);
  FILE* const file = fopen(path, "r");
  if (file == NULL) return 0;
  const int isRead = fgets(line, sizeof line, file) != NULL;
  fclose(file);
  /* The thread's name stands in parentheses and may hold anything. */
  const char* const rest = isRead ? strrchr(line, ')') : NULL;
  long user = 0, kernel = 0;
  if (rest == NULL) return 0;
  sscanf(rest, ") %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %ld %ld", &user, &kernel);
  return user + kernel;
}

long otherThreadsMilliseconds(void) {
  DIR* const folder = opendir("/proc/self/task");
  CHECK(folder != NULL);
  long ticks = 0;
  for (const struct dirent* entry; (entry = readdir(folder)) != NULL;) {
    const int isThread = entry->d_name[0] != '.' && atoi(entry->d_name) != (int)getpid();
    if (isThread) ticks += threadTicks(entry->d_name);
  }
  closedir(folder);
  return ticks * 1000 / sysconf(_SC_CLK_TCK);
}

long residentKibibytes(void) {
  FILE* const file = fopen("/proc/self/statm", "r");
  CHECK(file != NULL);
  long pages = 0;
  CHECK(fscanf(file, "%*d %ld", &pages) == 1);
  fclose(file);
  return pages * (sysconf(_SC_PAGESIZE) / 1024);
}
