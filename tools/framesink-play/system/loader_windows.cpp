#include <windows.h>

#include <filesystem>

#include "system/loader.hpp"

namespace framesink::play {

const char* const kLibraryName = "framesink.dll";
const char* const kSdlName = "SDL2.dll";
const char* const kPixkitName = "pixkit.dll";

// The loader searches the program's folder first. A file gets its absolute path, so that the loader
// finds the DLLs in the file's folder too.
std::string loadPath(const std::string& asked) {
  std::error_code ignored;
  if (asked.empty()) return kLibraryName;
  if (!std::filesystem::exists(asked, ignored)) return asked;
  return std::filesystem::absolute(asked, ignored).make_preferred().string();
}

void* openLibrary(const std::string& path) {
  return LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

void* findSymbol(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

std::string loaderMessage() {
  return std::system_category().message(static_cast<int>(GetLastError()));
}

void closeLibrary(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }

void* findLoaded(const char* library, const char* symbol) {
  HMODULE handle = GetModuleHandleA(library);
  return handle != nullptr ? findSymbol(handle, symbol) : nullptr;
}

}  // namespace framesink::play
