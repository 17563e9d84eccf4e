// The FILE of a source: a path, or "-" for standard input.
#pragma once

#include <string>

namespace framesink::play {

bool isStandardInput(const std::string& file);

// As messages name it.
std::string nameOf(const std::string& file);

// Throws a Failure that names the file.
[[noreturn]] void failFor(const std::string& file, const std::string& what);

// Throws Failure when the file is a folder.
void refuseFolder(const std::string& file);

}  // namespace framesink::play
