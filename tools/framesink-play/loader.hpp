// The system's loader of shared libraries.
#pragma once

#include <string>

namespace framesink::play {

// What the library's file is called on this system.
extern const char* const kLibraryName;

// What to ask the loader for: `asked` as the user gave it; empty: the library beside the build of
// this program, else the loader's choice.
std::string loadPath(const std::string& asked);

// Null on failure; loaderMessage() then tells why.
void* openLibrary(const std::string& path);
void* findSymbol(void* library, const char* name);
std::string loaderMessage();

void closeLibrary(void* library);

}  // namespace framesink::play
