// The operating system's loader of shared libraries.
#pragma once

#include <string>

namespace framesink::play {

// The file names of the library and of the two libraries that it uses.
extern const char* const kLibraryName;
extern const char* const kSdlName;
extern const char* const kPixkitName;

// Returns the path to give to the loader for `asked`, the user's --library. If it is empty, that is
// the library of this program's build, otherwise the bare kLibraryName.
std::string loadPath(const std::string& asked);

// Both return null on failure; loaderMessage() then returns the reason.
void* openLibrary(const std::string& path);
void* findSymbol(void* library, const char* name);
std::string loaderMessage();

void closeLibrary(void* library);

// Returns the address of a symbol in a library that the process has already loaded, or null. Does
// not keep the library loaded.
void* findLoaded(const char* library, const char* symbol);

}  // namespace framesink::play
