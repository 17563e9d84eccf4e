// The system's loader of shared libraries.
#pragma once

#include <string>

namespace framesink::play {

// What the files of the library, and of those it brings along, are called on this system.
extern const char* const kLibraryName;
extern const char* const kSdlName;
extern const char* const kPixkitName;

// What to ask the loader for: `asked` as the user gave it; empty: the library beside the build of
// this program, else the loader's choice.
std::string loadPath(const std::string& asked);

// Null on failure; loaderMessage() then tells why.
void* openLibrary(const std::string& path);
void* findSymbol(void* library, const char* name);
std::string loaderMessage();

void closeLibrary(void* library);

// The address of a symbol in a library that the process has loaded by now; null when one of them is
// missing. The library is not kept loaded.
void* findLoaded(const char* library, const char* symbol);

}  // namespace framesink::play
