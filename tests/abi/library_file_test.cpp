// The shared library as a file: what it exports, what it requires, and that it can be unloaded.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "elf_file.hpp"

namespace framesink::test {
namespace {

using Names = std::set<std::string>;

const ElfFile& library() {
  static const ElfFile file(FRAMESINK_LIBRARY);
  return file;
}

const Names kFunctions{"libCreate",         "libStart",           "libUpdate",
                       "libOutputs",        "libTerminate",       "libDestroy",
                       "createVideoWindow", "destroyVideoWindow", "getWindowPosSize",
                       "isPlayerOpen",      "renameVideoWindow"};
const Names kData{"framesink_version", "framesink_build_date", "framesink_relative_path"};

Names exported(unsigned type) {
  Names names;
  for (const ElfSymbol& symbol : library().dynamicSymbols()) {
    if (symbol.defined && symbol.type == type) names.insert(symbol.name);
  }
  return names;
}

Names definedBy(const std::string& path) {
  Names names;
  const ElfFile file(path);
  for (const ElfSymbol& symbol : file.dynamicSymbols()) {
    if (symbol.defined) names.insert(symbol.name);
  }
  return names;
}

// The paths of all loaded libraries, by file name.
std::map<std::string, std::string> loadedLibraries() {
  void* handle = dlopen(FRAMESINK_LIBRARY, RTLD_NOW);
  const link_map* loaded = nullptr;
  if (handle == nullptr || dlinfo(handle, RTLD_DI_LINKMAP, &loaded) != 0) return {};
  while (loaded->l_prev != nullptr) loaded = loaded->l_prev;
  std::map<std::string, std::string> paths;
  for (; loaded != nullptr; loaded = loaded->l_next) {
    const std::string path = loaded->l_name;
    paths[path.substr(path.rfind('/') + 1)] = path;
  }
  dlclose(handle);
  return paths;
}

TEST(LibraryFile, ExportsElevenFunctionsAndThreeDataSymbolsAndNothingElse) {
  EXPECT_EQ(exported(STT_FUNC), kFunctions);
  EXPECT_EQ(exported(STT_OBJECT), kData);
  const auto isDefined = [](const ElfSymbol& symbol) { return symbol.defined; };
  const auto& symbols = library().dynamicSymbols();
  EXPECT_EQ(std::count_if(symbols.begin(), symbols.end(), isDefined), 14);
}

TEST(LibraryFile, DataExportsAreOfAPointersSize) {
  for (const ElfSymbol& symbol : library().dynamicSymbols()) {
    if (symbol.defined && symbol.type == STT_OBJECT) {
      EXPECT_EQ(symbol.size, sizeof(void*)) << symbol.name;
    }
  }
}

TEST(LibraryFile, IsNamedByItsMajorVersion) {
  EXPECT_EQ(library().dynamicStrings(DT_SONAME), std::vector<std::string>{"libframesink.so.1"});
}

TEST(LibraryFile, SymbolsHaveNoVersions) {
  EXPECT_TRUE(library().dynamicValues(DT_VERDEF).empty());
}

// A unique symbol or the flag DF_1_NODELETE would keep the library mapped after dlclose.
TEST(LibraryFile, CanBeUnloaded) {
  for (const auto* symbols : {&library().dynamicSymbols(), &library().allSymbols()}) {
    for (const ElfSymbol& symbol : *symbols) {
      EXPECT_NE(symbol.binding, unsigned{STB_GNU_UNIQUE}) << symbol.name;
    }
  }
  for (const std::uint64_t flags : library().dynamicValues(DT_FLAGS_1)) {
    EXPECT_EQ(flags & DF_1_NODELETE, 0U);
  }
}

TEST(LibraryFile, HasNoThreadLocalStorage) {
  EXPECT_FALSE(library().hasSegment(PT_TLS));
  for (const ElfSymbol& symbol : library().allSymbols()) {
    if (symbol.defined) {
      EXPECT_NE(symbol.type, unsigned{STT_TLS}) << symbol.name;
    }
  }
}

TEST(LibraryFile, HasNoExecutableStackAndNoTextRelocations) {
  EXPECT_TRUE(library().hasSegment(PT_GNU_STACK));
  EXPECT_FALSE(library().isSegmentExecutable(PT_GNU_STACK));
  EXPECT_TRUE(library().dynamicValues(DT_TEXTREL).empty());
}

TEST(LibraryFile, NeedsSdlPixkitAndHighway) {
  const auto needed = library().dynamicStrings(DT_NEEDED);
  const auto needs = [&](const char* part) {
    return std::any_of(needed.begin(), needed.end(), [&](const std::string& name) {
      return name.find(part) != std::string::npos;
    });
  };
  EXPECT_TRUE(needs("libSDL2"));
  EXPECT_TRUE(needs("libpixkit"));
  EXPECT_TRUE(needs("libhwy"));
}

// Every undefined symbol comes from a library that the file itself names as needed.
TEST(LibraryFile, LeavesNoSymbolUndefined) {
  const auto loaded = loadedLibraries();
  Names offered;
  for (const std::string& name : library().dynamicStrings(DT_NEEDED)) {
    ASSERT_TRUE(loaded.count(name)) << name;
    offered.merge(definedBy(loaded.at(name)));
  }
  for (const ElfSymbol& symbol : library().dynamicSymbols()) {
    if (symbol.defined || symbol.binding == STB_WEAK || symbol.name.empty()) continue;
    EXPECT_TRUE(offered.count(symbol.name)) << symbol.name;
  }
}

// ---- SDL ----

const Names kAllowedSdlFunctions{"SDL_WasInit",           "SDL_Init",
                                 "SDL_EnableScreenSaver", "SDL_Quit",
                                 "SDL_CreateThread",      "SDL_CreateMutex",
                                 "SDL_DestroyMutex",      "SDL_LockMutex",
                                 "SDL_UnlockMutex",       "SDL_Delay",
                                 "SDL_PollEvent",         "SDL_CreateWindow",
                                 "SDL_DestroyWindow",     "SDL_GetWindowID",
                                 "SDL_GetWindowFlags",    "SDL_GetWindowPixelFormat",
                                 "SDL_GetWindowSize",     "SDL_SetWindowSize",
                                 "SDL_SetWindowTitle",    "SDL_SetWindowFullscreen",
                                 "SDL_ShowWindow",        "SDL_RaiseWindow",
                                 "SDL_SetWindowIcon",     "SDL_CreateRGBSurfaceFrom",
                                 "SDL_FreeSurface",       "SDL_CreateRenderer",
                                 "SDL_DestroyRenderer",   "SDL_RenderSetLogicalSize",
                                 "SDL_RenderClear",       "SDL_RenderCopy",
                                 "SDL_RenderPresent",     "SDL_CreateTexture",
                                 "SDL_DestroyTexture",    "SDL_LockTexture",
                                 "SDL_UnlockTexture",     "SDL_GetError",
                                 "SDL_LogError",          "SDL_SetHintWithPriority",
                                 "SDL_GetHint",           "SDL_GetCurrentVideoDriver",
                                 "SDL_GetWindowWMInfo"};

// Questions that SDL answers from memory. The tests need no record of them.
const Names kQuestions{"SDL_GetHint", "SDL_GetCurrentVideoDriver", "SDL_GetWindowWMInfo"};

Names usedSdlFunctions() {
  Names used;
  for (const ElfSymbol& symbol : library().dynamicSymbols()) {
    if (symbol.name.rfind("SDL_", 0) == 0) used.insert(symbol.name);
  }
  EXPECT_TRUE(used.count("SDL_CreateWindow"));
  return used;
}

TEST(LibraryFile, UsesOnlyTheSdlFunctionsThatItMay) {
  const Names used = usedSdlFunctions();
  for (const std::string& name : used) EXPECT_TRUE(kAllowedSdlFunctions.count(name)) << name;
}

// Otherwise the tests of the display would miss some of the library's calls to SDL.
TEST(LibraryFile, UsesOnlySdlFunctionsThatTheTestsRecord) {
  std::istringstream list(RECORDED_SDL_FUNCTIONS);
  const Names recorded{std::istream_iterator<std::string>(list), {}};
  for (const std::string& name : usedSdlFunctions()) {
    EXPECT_TRUE(recorded.count(name) || kQuestions.count(name)) << name;
  }
}

// The references are weak, so that the library loads against an SDL without these functions.
TEST(LibraryFile, CanDoWithoutWhatAnOlderSdlLacks) {
  const Names dispensable{"SDL_SetHintWithPriority", "SDL_GetWindowWMInfo",
                          "SDL_GetCurrentVideoDriver"};
  std::size_t references = 0;
  for (const ElfSymbol& symbol : library().dynamicSymbols()) {
    if (!dispensable.count(symbol.name)) continue;
    EXPECT_EQ(symbol.binding, unsigned{STB_WEAK}) << symbol.name;
    ++references;
  }
  EXPECT_EQ(references, dispensable.size());
}

}  // namespace
}  // namespace framesink::test
