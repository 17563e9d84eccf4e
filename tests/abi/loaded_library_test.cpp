// The shared library, loaded into this process.
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
  // The string that the data export points to.
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

// ---- The table of entry points ----

struct Table {
  std::array<void*, 6> entries{};  // the addresses to search for
  std::uintptr_t base = 0;         // the library's load address
  int found = 0;                   // how many tables were found
};

// The search also reads between the library's variables, which the address sanitizer would report.
__attribute__((no_sanitize("address"))) bool isTable(std::uintptr_t address, const Table& table) {
  const auto* here = reinterpret_cast<void* const*>(address);
  for (std::size_t i = 0; i < table.entries.size(); ++i) {
    if (here[i] != table.entries[i]) return false;
  }
  return true;
}

// True if the loader makes that offset read-only after relocation.
bool isReadOnly(const dl_phdr_info& library, std::uintptr_t offset) {
  for (int i = 0; i < library.dlpi_phnum; ++i) {
    const auto& segment = library.dlpi_phdr[i];
    if (segment.p_type == PT_GNU_RELRO && offset - segment.p_vaddr < segment.p_memsz) return true;
  }
  return false;
}

int tablesIn(const dl_phdr_info& library, const ElfW(Phdr) & segment, const Table& table) {
  int found = 0;
  for (std::uintptr_t i = 0; i + sizeof table.entries <= segment.p_memsz; i += sizeof(void*)) {
    const std::uintptr_t offset = segment.p_vaddr + i;
    if (!isReadOnly(library, offset) && isTable(library.dlpi_addr + offset, table)) ++found;
  }
  return found;
}

int searchLibrary(dl_phdr_info* library, std::size_t, void* data) {
  auto& table = *static_cast<Table*>(data);
  if (library->dlpi_addr != table.base) return 0;
  for (int s = 0; s < library->dlpi_phnum; ++s) {
    const auto& segment = library->dlpi_phdr[s];
    const bool writable = segment.p_type == PT_LOAD && (segment.p_flags & PF_W) != 0;
    if (writable) table.found += tablesIn(*library, segment, table);
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
