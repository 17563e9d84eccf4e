#include "support/os_facts.hpp"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace framesink::test {
namespace {

namespace fs = std::filesystem;

// Returns "" if the thread has ended.
std::string nameOf(const fs::path& task) {
  std::ifstream file(task / "comm");
  std::string name;
  std::getline(file, name);
  return name;
}

std::string threadName(int id) { return nameOf("/proc/self/task/" + std::to_string(id)); }

// Reads a number that the kernel keeps of the thread; 0 if the thread has ended.
std::uint64_t statusOf(const fs::path& task, const std::string& key) {
  std::ifstream file(task / "status");
  for (std::string word; file >> word;) {
    std::uint64_t number = 0;
    if (word == key + ":" && file >> number) return number;
  }
  return 0;
}

}  // namespace

std::vector<int> threadIds() {
  std::vector<int> ids;
  for (const auto& entry : fs::directory_iterator("/proc/self/task")) {
    ids.push_back(std::stoi(entry.path().filename().string()));
  }
  std::sort(ids.begin(), ids.end());
  return ids;
}

std::vector<std::string> threadNames() {
  const std::vector<int> ids = threadIds();
  std::vector<std::string> names;
  std::transform(ids.begin(), ids.end(), std::back_inserter(names), threadName);
  return names;
}

std::uint64_t timesAsleep(pid_t process, const std::string& thread) {
  std::uint64_t times = 0;
  for (const auto& task : fs::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
    if (nameOf(task) == thread) times += statusOf(task, "voluntary_ctxt_switches");
  }
  return times;
}

bool isAsleep(int thread) {
  std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/status");
  for (std::string word; file >> word;) {
    std::string state;
    if (word == "State:" && file >> state) return state == "S";
  }
  return false;
}

// A line is "address permissions offset device inode path"; only the path contains a slash.
bool isMapped(std::string_view part) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    const std::size_t path = line.find('/');
    if (path != std::string::npos && line.find(part, path) != std::string::npos) return true;
  }
  return false;
}

std::size_t residentBytes() {
  std::ifstream statm("/proc/self/statm");
  std::size_t totalPages = 0;
  std::size_t residentPages = 0;
  statm >> totalPages >> residentPages;
  return residentPages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::size_t openFileDescriptors() {
  const auto count = std::distance(fs::directory_iterator("/proc/self/fd"), {});
  return static_cast<std::size_t>(count) - 1;  // without the descriptor of this walk itself
}

}  // namespace framesink::test
