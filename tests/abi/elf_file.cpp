#include "elf_file.hpp"

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace framesink::test {
namespace {

std::string contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

ElfFile::ElfFile(const std::string& path) : file_(contents(path)) {
  if (file_.compare(0, SELFMAG, ELFMAG) != 0 || file_.at(EI_CLASS) != ELFCLASS64) {
    throw std::runtime_error(path + " is no 64-bit ELF file");
  }
  const Elf64_Ehdr header = read<Elf64_Ehdr>(0, sizeof(Elf64_Ehdr)).front();
  segments_ = read<Elf64_Phdr>(header.e_phoff, sizeof(Elf64_Phdr) * header.e_phnum);
  sections_ = read<Elf64_Shdr>(header.e_shoff, sizeof(Elf64_Shdr) * header.e_shnum);
  for (const Elf64_Shdr& section : sections_) {
    if (section.sh_type == SHT_DYNSYM) dynamicSymbols_ = symbolsOf(section);
    if (section.sh_type == SHT_SYMTAB) allSymbols_ = symbolsOf(section);
    if (section.sh_type != SHT_DYNAMIC) continue;
    dynamic_ = read<Elf64_Dyn>(section.sh_offset, section.sh_size);
    dynamicText_ = sections_.at(section.sh_link);
  }
}

template <class T>
std::vector<T> ElfFile::read(std::uint64_t offset, std::uint64_t bytes) const {
  if (offset > file_.size() || bytes > file_.size() - offset) {
    throw std::runtime_error("ELF file cut off");
  }
  std::vector<T> items(bytes / sizeof(T));
  if (!items.empty()) std::memcpy(items.data(), file_.data() + offset, items.size() * sizeof(T));
  return items;
}

std::vector<ElfSymbol> ElfFile::symbolsOf(const Elf64_Shdr& table) const {
  std::vector<ElfSymbol> symbols;
  for (const Elf64_Sym& symbol : read<Elf64_Sym>(table.sh_offset, table.sh_size)) {
    symbols.push_back({.name = text(sections_.at(table.sh_link), symbol.st_name),
                       .type = static_cast<unsigned>(ELF64_ST_TYPE(symbol.st_info)),
                       .binding = static_cast<unsigned>(ELF64_ST_BIND(symbol.st_info)),
                       .defined = symbol.st_shndx != SHN_UNDEF,
                       .size = symbol.st_size});
  }
  return symbols;
}

std::string ElfFile::text(const Elf64_Shdr& strings, std::uint64_t offset) const {
  return file_.c_str() + strings.sh_offset + offset;
}

bool ElfFile::hasSegment(std::uint32_t type) const {
  for (const Elf64_Phdr& segment : segments_) {
    if (segment.p_type == type) return true;
  }
  return false;
}

bool ElfFile::isSegmentExecutable(std::uint32_t type) const {
  for (const Elf64_Phdr& segment : segments_) {
    if (segment.p_type == type) return (segment.p_flags & PF_X) != 0;
  }
  return false;
}

std::vector<std::uint64_t> ElfFile::dynamicValues(std::int64_t tag) const {
  std::vector<std::uint64_t> values;
  for (const Elf64_Dyn& entry : dynamic_) {
    if (entry.d_tag == tag) values.push_back(entry.d_un.d_val);
  }
  return values;
}

std::vector<std::string> ElfFile::dynamicStrings(std::int64_t tag) const {
  std::vector<std::string> strings;
  for (const std::uint64_t offset : dynamicValues(tag)) {
    strings.push_back(text(dynamicText_, offset));
  }
  return strings;
}

}  // namespace framesink::test
