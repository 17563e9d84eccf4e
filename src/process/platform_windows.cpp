#include <windows.h>

#include <atomic>

#include "process/platform.hpp"

namespace framesink {
namespace {

constinit std::atomic<bool> processEnds{false};

// Of the library or program that this code was linked into.
HMODULE ownModule() {
  HMODULE module = nullptr;
  ::GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&processEnds), &module);
  return module;
}

// The number of a thread that has ended is not given to another while somebody has a handle of it,
// as SDL has of a thread that is never joined.
class OpenThread {
 public:
  OpenThread(OsThreadId thread, DWORD access)
      : handle_(::OpenThread(access, FALSE, static_cast<DWORD>(thread))) {}
  ~OpenThread() {
    if (handle_ != nullptr) ::CloseHandle(handle_);
  }
  OpenThread(const OpenThread&) = delete;
  OpenThread& operator=(const OpenThread&) = delete;

  bool isOpen() const { return handle_ != nullptr; }
  HANDLE handle() const { return handle_; }

 private:
  const HANDLE handle_;
};

// Where the thread is in its code; 0 when it cannot be told.
std::uintptr_t instructionOf(HANDLE thread) {
  CONTEXT context{};
  context.ContextFlags = CONTEXT_CONTROL;
  if (::SuspendThread(thread) == static_cast<DWORD>(-1)) return 0;
  const bool told = ::GetThreadContext(thread, &context) != 0;
  ::ResumeThread(thread);
  return told ? context.Rip : 0;
}

bool isOwnCode(std::uintptr_t instruction) {
  const auto begin = reinterpret_cast<std::uintptr_t>(ownModule());
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(begin);
  const auto* header = reinterpret_cast<const IMAGE_NT_HEADERS*>(begin + dos->e_lfanew);
  return instruction >= begin && instruction < begin + header->OptionalHeader.SizeOfImage;
}

}  // namespace

OsThreadId currentThread() { return ::GetCurrentThreadId(); }

bool isThreadGone(OsThreadId thread) {
  const OpenThread opened(thread, SYNCHRONIZE);
  // Other failures, of memory for example, tell nothing of the thread.
  if (!opened.isOpen()) return ::GetLastError() == ERROR_INVALID_PARAMETER;
  return ::WaitForSingleObject(opened.handle(), 0) == WAIT_OBJECT_0;
}

bool hasLeftLibrary(OsThreadId thread) {
  if (isThreadGone(thread)) return true;
  const OpenThread opened(thread, THREAD_SUSPEND_RESUME | THREAD_GET_CONTEXT);
  if (!opened.isOpen()) return false;
  const std::uintptr_t instruction = instructionOf(opened.handle());
  return instruction != 0 && !isOwnCode(instruction);
}

bool areOtherThreadsGone() { return processEnds; }

LibraryHold::LibraryHold(const void* address) {
  HMODULE module = nullptr;
  ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, static_cast<LPCWSTR>(address),
                       &module);
  library_ = module;
}

// FreeLibrary has the form of a thread's function. Without memory for that the library stays.
void LibraryHold::letGo() {
  void* const library = std::exchange(library_, nullptr);
  if (library == nullptr) return;
  const auto unload = reinterpret_cast<LPTHREAD_START_ROUTINE>(::FreeLibrary);
  ::QueueUserWorkItem(unload, library, WT_EXECUTELONGFUNCTION);
}

void LibraryHold::endThread() {
  if (library_ != nullptr) ::FreeLibraryAndExitThread(static_cast<HMODULE>(library_), 0);
}

LibraryHold holdThisLibrary() { return LibraryHold(&processEnds); }

// The address of a function of a DLL may be that of a jump to it; a DLL's name is what it is loaded
// by.
LibraryHold holdSdl() { return LibraryHold(::GetModuleHandleW(L"SDL2.dll")); }

// The system gives a thread's stack back itself.
DeadStack currentThreadStack() { return {}; }

void giveBack(DeadStack) {}

std::uint64_t currentProcess() { return ::GetCurrentProcessId(); }

void sleepFor(std::chrono::milliseconds duration) { ::Sleep(static_cast<DWORD>(duration.count())); }

}  // namespace framesink

// The system's word when the library is loaded or unloaded. Our statics are destroyed right after
// the one for unloading.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID endOfProcess) {
  if (reason == DLL_PROCESS_DETACH) framesink::processEnds = endOfProcess != nullptr;
  return TRUE;
}
