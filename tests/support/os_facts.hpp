// What the operating system knows about this process.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace framesink::test {

// Thread ids in ascending order. A sanitizer may keep a thread of its own: compare with what stood
// before.
std::vector<int> threadIds();

// Names of the threads in the order of threadIds(), cut to 15 characters by the kernel.
std::vector<std::string> threadNames();

// How often threads of that name in a process have gone to sleep; it stands still while they sleep
// on.
std::uint64_t timesAsleep(pid_t process, const std::string& thread);

// True when that thread of this process sleeps, for example because it waits for a lock.
bool isAsleep(int thread);

// True when a file whose path holds `part` is mapped, for example a loaded library.
bool isMapped(std::string_view part);

// Physical memory in use, bytes.
std::size_t residentBytes();

// Number of open file descriptors.
std::size_t openFileDescriptors();

}  // namespace framesink::test
