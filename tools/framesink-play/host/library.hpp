// The library as a host sees it: loaded by name, called through its public interface only.
#pragma once

#include <memory>
#include <string>

#include "framesink/framesink.h"

namespace framesink::play {

class Library {
 public:
  // Loads `path`, or the default library if `path` is empty (see loadPath). Throws Failure if the
  // library cannot be loaded or lacks a symbol of the interface.
  explicit Library(const std::string& path);

  decltype(&::libCreate) libCreate = nullptr;
  decltype(&::libStart) libStart = nullptr;
  decltype(&::libUpdate) libUpdate = nullptr;
  decltype(&::libOutputs) libOutputs = nullptr;
  decltype(&::libTerminate) libTerminate = nullptr;
  decltype(&::libDestroy) libDestroy = nullptr;
  decltype(&::createVideoWindow) createVideoWindow = nullptr;
  decltype(&::destroyVideoWindow) destroyVideoWindow = nullptr;
  decltype(&::getWindowPosSize) getWindowPosSize = nullptr;
  decltype(&::isPlayerOpen) isPlayerOpen = nullptr;
  decltype(&::renameVideoWindow) renameVideoWindow = nullptr;
  std::string version;
  std::string buildDate;

  const std::string& path() const { return path_; }

 private:
  struct Unload {
    void operator()(void* handle) const;
  };

  void* symbol(const char* name) const;
  std::string text(const char* name) const;
  template <class Function>
  void resolve(Function& function, const char* name);
  void resolveAll();

  std::string path_;
  std::unique_ptr<void, Unload> handle_;
};

}  // namespace framesink::play
