#include <windows.h>

#include <atomic>

#include "process/platform.hpp"

namespace framesink {
namespace {

constinit std::atomic<bool> processEnds{false};

// The module (library or program) that this code is linked into.
HMODULE ownModule() {
  HMODULE module = nullptr;
  ::GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&processEnds), &module);
  return module;
}

// A thread, opened by its id. The id cannot belong to another thread by now: Windows does not reuse
// it while a handle to the thread is open, and SDL keeps one for a thread that is never joined.
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

// The address of the thread's next instruction, or 0 if it cannot be determined.
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
  // Other errors, such as a lack of memory, do not mean that the thread is gone.
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

// A thread of the operating system's pool calls FreeLibrary, whose signature fits a thread
// function. If there is no memory to queue the call, the library stays loaded.
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

// By name, because the address of an SDL function may be that of a jump inside this library.
LibraryHold holdSdl() { return LibraryHold(::GetModuleHandleW(L"SDL2.dll")); }

// Windows itself releases the stack of a thread that has ended.
DeadStack currentThreadStack() { return {}; }

void giveBack(DeadStack) {}

std::uint64_t currentProcess() { return ::GetCurrentProcessId(); }

void sleepFor(std::chrono::milliseconds duration) { ::Sleep(static_cast<DWORD>(duration.count())); }

}  // namespace framesink

// Windows calls this when it loads or unloads the library. Static objects are destroyed right after
// the call for unloading.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID endOfProcess) {
  if (reason == DLL_PROCESS_DETACH) framesink::processEnds = endOfProcess != nullptr;
  return TRUE;
}
