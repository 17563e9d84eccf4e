// What the operating system knows about this process.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace framesink::test {

// Thread ids in ascending order. A sanitizer may add a thread, so compare with an earlier count.
std::vector<int> threadIds();

// The threads' names, in the order of threadIds(). The kernel cuts them to 15 characters.
std::vector<std::string> threadNames();

// How often the threads of that name in a process have gone to sleep. The number does not change
// while they stay asleep.
std::uint64_t timesAsleep(pid_t process, const std::string& thread);

// True if that thread of this process sleeps, for example because it waits for a lock.
bool isAsleep(int thread);

// True if a file whose path contains `part` is mapped, for example a loaded library.
bool isMapped(std::string_view part);

// Physical memory in use, in bytes.
std::size_t residentBytes();

// Number of open file descriptors.
std::size_t openFileDescriptors();

}  // namespace framesink::test
