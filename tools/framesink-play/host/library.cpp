#include "host/library.hpp"

#include "system/failure.hpp"
#include "system/loader.hpp"

namespace framesink::play {

Library::Library(const std::string& path) : path_(loadPath(path)), handle_(openLibrary(path_)) {
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

void Library::Unload::operator()(void* handle) const { closeLibrary(handle); }

void* Library::symbol(const char* name) const {
  void* address = findSymbol(handle_.get(), name);
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
