#include <dlfcn.h>

#include <filesystem>

#include "system/loader.hpp"

namespace framesink::play {

namespace fs = std::filesystem;

const char* const kLibraryName = "libframesink.so.1";
const char* const kSdlName = "libSDL2-2.0.so.0";
const char* const kPixkitName = "libpixkit.so";

// A file in the current folder gets "./", because dlopen searches its own path for bare names.
std::string loadPath(const std::string& asked) {
  std::error_code ignored;
  if (!asked.empty()) {
    const bool bareFile = asked.find('/') == std::string::npos && fs::exists(asked, ignored);
    return bareFile ? "./" + asked : asked;
  }
  const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
  const fs::path built = program.parent_path().parent_path() / "lib" / kLibraryName;
  return fs::exists(built, ignored) ? built.string() : kLibraryName;
}

void* openLibrary(const std::string& path) { return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }

void* findSymbol(void* library, const char* name) { return dlsym(library, name); }

std::string loaderMessage() {
  const char* message = dlerror();
  return message != nullptr ? message : "unknown error";
}

void closeLibrary(void* library) { dlclose(library); }

void* findLoaded(const char* library, const char* symbol) {
  void* handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
  if (handle == nullptr) return nullptr;
  void* address = dlsym(handle, symbol);
  dlclose(handle);
  return address;
}

}  // namespace framesink::play
