// The shared library as it lies in memory.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>
#include <regex.h>

#include <array>
#include <cstring>

#include "framesink/framesink.h"

namespace framesink::test {
namespace {

class LoadedLibrary : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(handle, nullptr) << dlerror(); }
  ~LoadedLibrary() override {
    if (handle != nullptr) dlclose(handle);
  }

  void* symbol(const char* name) {
    void* address = dlsym(handle, name);
    EXPECT_NE(address, nullptr) << name;
    return address;
  }
  // Where the data export's pointer leads.
  std::string text(const char* name) {
    const auto* pointer = static_cast<const char* const*>(symbol(name));
    return pointer == nullptr ? "" : *pointer;
  }

  void* const handle = dlopen(FRAMESINK_LIBRARY, RTLD_NOW | RTLD_LOCAL);
};

bool matches(const std::string& text, const char* pattern) {
  regex_t compiled;
  if (regcomp(&compiled, pattern, REG_EXTENDED | REG_NOSUB) != 0) return false;
  const bool found = regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
  regfree(&compiled);
  return found;
}

TEST_F(LoadedLibrary, TellsItsVersion) {
  EXPECT_EQ(text("framesink_version"), FRAMESINK_PROJECT_VERSION);
  EXPECT_TRUE(matches(text("framesink_version"), "^[0-9]+(\\.[0-9]+)+$"));
}

TEST_F(LoadedLibrary, TellsItsBuildDateInTheCompilersForm) {
  const std::string date = text("framesink_build_date");
  EXPECT_TRUE(matches(date,
                      "^(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
                      "( [1-9]|[12][0-9]|3[01]) 20[0-9][0-9]$"))
      << date;
}

TEST_F(LoadedLibrary, TellsItsRelativePath) {
  EXPECT_EQ(text("framesink_relative_path"), "bin\\win64\\framesink.dll");
}

// ---- The table of entry points ------------------------------------------------------------------

struct Table {
  std::array<void*, 6> entries{};
  std::uintptr_t base = 0;  // of the library
  int found = 0;
};

// Counts the table in the segment, leaving out what the loader makes read-only after relocation.
void search(const dl_phdr_info& library, const ElfW(Phdr) & segment, Table& table) {
  constexpr std::size_t kBytes = sizeof table.entries;
  for (std::uintptr_t i = 0; i + kBytes <= segment.p_memsz; i += sizeof(void*)) {
    const std::uintptr_t address = segment.p_vaddr + i;
    bool readOnly = false;
    for (int s = 0; s < library.dlpi_phnum; ++s) {
      const auto& other = library.dlpi_phdr[s];
      readOnly |= other.p_type == PT_GNU_RELRO && address >= other.p_vaddr &&
                  address < other.p_vaddr + other.p_memsz;
    }
    const auto* here = reinterpret_cast<const void*>(library.dlpi_addr + address);
    if (!readOnly && std::memcmp(here, table.entries.data(), kBytes) == 0) ++table.found;
  }
}

int searchLibrary(dl_phdr_info* library, std::size_t, void* data) {
  auto& table = *static_cast<Table*>(data);
  if (library->dlpi_addr != table.base) return 0;
  for (int s = 0; s < library->dlpi_phnum; ++s) {
    const auto& segment = library->dlpi_phdr[s];
    if (segment.p_type == PT_LOAD && (segment.p_flags & PF_W) != 0)
      search(*library, segment, table);
  }
  return 1;
}

TEST_F(LoadedLibrary, KeepsATableOfItsLifecycleInWritableData) {
  Table table{.entries = {symbol("libCreate"), symbol("libStart"), symbol("libUpdate"),
                          symbol("libOutputs"), symbol("libTerminate"), symbol("libDestroy")}};
  const link_map* map = nullptr;
  ASSERT_EQ(dlinfo(handle, RTLD_DI_LINKMAP, &map), 0);
  table.base = map->l_addr;
  dl_iterate_phdr(searchLibrary, &table);
  EXPECT_EQ(table.found, 1);
}

}  // namespace
}  // namespace framesink::test
