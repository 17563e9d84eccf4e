#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <string.h>
#include <tlhelp32.h>
#include <winternl.h>

#include "host.h"

enum { PATIENCE = 10000 }; /* milliseconds */

/* The test expects lines to end with a line feed only. */
__attribute__((constructor)) static void writePlainLines(void) {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
}

void sleepMilliseconds(long milliseconds) { Sleep((DWORD)milliseconds); }

double secondsNow(void) {
  LARGE_INTEGER ticks, frequency;
  QueryPerformanceCounter(&ticks);
  QueryPerformanceFrequency(&frequency);
  return (double)ticks.QuadPart / (double)frequency.QuadPart;
}

/* Windows looks for the other DLLs beside this one only if the path is full and has backslashes. */
void* openLibrary(const char* path) {
  char fullPath[MAX_PATH];
  CHECK(GetFullPathNameA(path, sizeof fullPath, fullPath, NULL) < sizeof fullPath);
  const HMODULE module = LoadLibraryExA(fullPath, NULL, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (module == NULL) fprintf(stderr, "%s: error %lu\n", path, GetLastError());
  return module;
}

void* findSymbol(void* handle, const char* name) {
  return (void*)(uintptr_t)GetProcAddress(handle, name);
}

void closeLibrary(void* handle) { CHECK(FreeLibrary(handle)); }

void checkForLeaks(void) {}

/* ---- This process as the operating system sees it ---- */

/* The headers lack this declaration. */
HRESULT WINAPI GetThreadDescription(HANDLE thread, PWSTR* description);

static int isDisplayThread(DWORD number) {
  const HANDLE thread = OpenThread(THREAD_QUERY_LIMITED_INFORMATION, FALSE, number);
  PWSTR name = NULL;
  if (thread == NULL) return 0;
  const int is =
      SUCCEEDED(GetThreadDescription(thread, &name)) && wcscmp(name, L"sdlVideoPlayers") == 0;
  LocalFree(name);
  CloseHandle(thread);
  return is;
}

/* Counts display threads only, because Windows keeps threads of its own in a process. */
int countThreads(void) {
  THREADENTRY32 entry = {.dwSize = sizeof entry};
  const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  int count = 0;
  for (BOOL more = Thread32First(all, &entry); more; more = Thread32Next(all, &entry)) {
    if (entry.th32OwnerProcessID == GetCurrentProcessId())
      count += isDisplayThread(entry.th32ThreadID);
  }
  CloseHandle(all);
  return count;
}

/* Waits, because a thread's last steps come after the library has been unloaded. */
int areThreadsGone(int before) {
  for (int i = 0; i < PATIENCE && countThreads() != before; ++i) Sleep(1);
  return countThreads() == before;
}

int isUnloaded(const char* name) {
  for (int i = 0; i < PATIENCE && GetModuleHandleA(name) != NULL; ++i) Sleep(1);
  return GetModuleHandleA(name) == NULL;
}

/* GCC takes the thread's own segment, from which NtCurrentTeb reads, for a null pointer. */
#pragma GCC diagnostic ignored "-Warray-bounds"

/* Reads the loader's own record of a library. The count lies behind the fields that winternl.h
 * declares. */
static int loadCount(const char* name) {
  enum { COUNT_AT = 0x6C };
  const HMODULE module = GetModuleHandleA(name);
  const LIST_ENTRY* const all =
      &NtCurrentTeb()->ProcessEnvironmentBlock->Ldr->InMemoryOrderModuleList;
  for (const LIST_ENTRY* at = all->Flink; at != all; at = at->Flink) {
    const LDR_DATA_TABLE_ENTRY* const entry =
        CONTAINING_RECORD(at, LDR_DATA_TABLE_ENTRY, InMemoryOrderLinks);
    if (entry->DllBase == module) return *(const volatile SHORT*)((const char*)entry + COUNT_AT);
  }
  return 0;
}

int isHeldOnce(const char* name) {
  for (int i = 0; i < PATIENCE && loadCount(name) != 1; ++i) Sleep(1);
  return loadCount(name) == 1;
}
