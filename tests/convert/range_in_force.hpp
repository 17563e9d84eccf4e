// Another range of one sample type for a scope, within a process. Posix only.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <new>

#include "convert/sample_types.hpp"
#include "pixkit/pixkit.h"
#include "range_sets.hpp"

namespace framesink {

// Overwrites the ends that pixkit declares constant and restores them; their memory stays writable.
// The conversions read them anew at each call. One thread only.
template <std::uint32_t Id>
class RangeInForce {
 public:
  explicit RangeInForce(const Range<SampleOf<Id>>& range) {
    overwrite(&videoTraits<Id>::min, static_cast<SampleOf<Id>>(range.min));
    overwrite(&videoTraits<Id>::max, static_cast<SampleOf<Id>>(range.max));
  }
  ~RangeInForce() {
    overwrite(&videoTraits<Id>::min, before_.min);
    overwrite(&videoTraits<Id>::max, before_.max);
  }
  RangeInForce(const RangeInForce&) = delete;
  RangeInForce& operator=(const RangeInForce&) = delete;

 private:
  static void overwrite(const void* end, SampleOf<Id> value) {
    const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    auto* const target = const_cast<void*>(end);
    auto* const start =
        reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(end) / page * page);
    if (::mprotect(start, page, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
    std::memcpy(target, &value, sizeof value);
  }

  // Volatile, because the compiler may otherwise read a constant end only when it is restored.
  static SampleOf<Id> endNow(const volatile void* end) {
    return *static_cast<const volatile SampleOf<Id>*>(end);
  }

  const Range<SampleOf<Id>> before_{endNow(&videoTraits<Id>::min), endNow(&videoTraits<Id>::max)};
};

}  // namespace framesink
