#include <link.h>

#include <algorithm>

#include "process/image_range.hpp"

namespace framesink {
namespace {

struct Search {
  std::uintptr_t address;
  std::string_view name;
  ImageRange found;
};

int look(dl_phdr_info* image, std::size_t, void* argument) {
  auto& search = *static_cast<Search*>(argument);
  ImageRange range;
  for (int i = 0; i < image->dlpi_phnum; ++i) {
    const auto& segment = image->dlpi_phdr[i];
    if (segment.p_type != PT_LOAD) continue;
    const std::uintptr_t begin = image->dlpi_addr + segment.p_vaddr;
    range.begin = range.end == 0 ? begin : std::min(range.begin, begin);
    range.end = std::max(range.end, begin + segment.p_memsz);
  }
  if (!range.contains(search.address)) return 0;
  const bool isNamed =
      std::string_view(image->dlpi_name).find(search.name) != std::string_view::npos;
  if (isNamed) search.found = range;
  return 1;
}

}  // namespace

ImageRange imageAround(std::uintptr_t address, std::string_view name) {
  Search search{address, name, {}};
  ::dl_iterate_phdr(look, &search);
  return search.found;
}

}  // namespace framesink
