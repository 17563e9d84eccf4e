#include "library.hpp"

#include <dlfcn.h>

#include <filesystem>

#include "failure.hpp"

namespace framesink::play {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSoname = "libframesink.so.1";

// What to hand to dlopen: a name without a slash is looked for in the loader's path only.
std::string loadPath(const std::string& asked) {
  std::error_code ignored;
  if (!asked.empty()) {
    const bool bareFile = asked.find('/') == std::string::npos && fs::exists(asked, ignored);
    return bareFile ? "./" + asked : asked;
  }
  const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
  const fs::path built = program.parent_path().parent_path() / "lib" / kSoname;
  return fs::exists(built, ignored) ? built.string() : kSoname;
}

std::string loaderMessage() {
  const char* message = dlerror();
  return message != nullptr ? message : "unknown error";
}

}  // namespace

Library::Library(const std::string& path)
    : path_(loadPath(path)), handle_(dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (!handle_) throw Failure(kLibraryTrouble, "cannot load the library: " + loaderMessage());
  resolveAll();
}

void Library::resolveAll() {
  resolve(libCreate, "libCreate");
  resolve(libStart, "libStart");
  resolve(libUpdate, "libUpdate");
  resolve(libOutputs, "libOutputs");
  resolve(libTerminate, "libTerminate");
  resolve(libDestroy, "libDestroy");
  resolve(createVideoWindow, "createVideoWindow");
  resolve(destroyVideoWindow, "destroyVideoWindow");
  resolve(getWindowPosSize, "getWindowPosSize");
  resolve(isPlayerOpen, "isPlayerOpen");
  resolve(renameVideoWindow, "renameVideoWindow");
  version = text("framesink_version");
  buildDate = text("framesink_build_date");
  text("framesink_relative_path");
}

void Library::Unload::operator()(void* handle) const { dlclose(handle); }

void* Library::symbol(const char* name) const {
  void* address = dlsym(handle_.get(), name);
  if (address != nullptr) return address;
  throw Failure(kLibraryTrouble, path_ + " is not framesink: it has no " + name);
}

std::string Library::text(const char* name) const {
  const char* value = *static_cast<const char* const*>(symbol(name));
  return value != nullptr ? value : "";
}

template <class Function>
void Library::resolve(Function& function, const char* name) {
  function = reinterpret_cast<Function>(symbol(name));
}

}  // namespace framesink::play
