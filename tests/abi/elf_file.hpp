// Reads the ELF file of a shared library.
#pragma once

#include <elf.h>

#include <cstdint>
#include <string>
#include <vector>

namespace framesink::test {

struct ElfSymbol {
  std::string name;
  unsigned type = 0;     // STT_...
  unsigned binding = 0;  // STB_...
  bool defined = false;
  std::uint64_t size = 0;
};

class ElfFile {
 public:
  // Throws std::runtime_error unless the file is a 64-bit ELF file. It must have this machine's
  // byte order.
  explicit ElfFile(const std::string& path);

  // The symbols that the loader sees, and all symbols of the file (none if it was stripped).
  const std::vector<ElfSymbol>& dynamicSymbols() const { return dynamicSymbols_; }
  const std::vector<ElfSymbol>& allSymbols() const { return allSymbols_; }

  bool hasSegment(std::uint32_t type) const;
  // False if there is no such segment.
  bool isSegmentExecutable(std::uint32_t type) const;

  // The values of the dynamic section's entries with the tag, as numbers and as the strings to
  // which they refer.
  std::vector<std::uint64_t> dynamicValues(std::int64_t tag) const;
  std::vector<std::string> dynamicStrings(std::int64_t tag) const;

 private:
  template <class T>
  std::vector<T> read(std::uint64_t offset, std::uint64_t bytes) const;
  std::vector<ElfSymbol> symbolsOf(const Elf64_Shdr& table) const;
  std::string text(const Elf64_Shdr& strings, std::uint64_t offset) const;

  std::string file_;
  std::vector<Elf64_Phdr> segments_;
  std::vector<Elf64_Shdr> sections_;
  std::vector<Elf64_Dyn> dynamic_;
  Elf64_Shdr dynamicText_{};
  std::vector<ElfSymbol> dynamicSymbols_;
  std::vector<ElfSymbol> allSymbols_;
};

}  // namespace framesink::test
