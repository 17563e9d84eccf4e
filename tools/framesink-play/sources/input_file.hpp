// The FILE of a source: a path, or "-" for standard input.
#pragma once

#include <string>

namespace framesink::play {

bool isStandardInput(const std::string& file);

// The file's name in messages.
std::string nameOf(const std::string& file);

// Throws a Failure whose message begins with the file's name.
[[noreturn]] void failFor(const std::string& file, const std::string& what);

// Throws Failure if the file is a folder.
void refuseFolder(const std::string& file);

}  // namespace framesink::play
