#include "support/scoped_variable.hpp"

#include <cstdlib>
#include <utility>

namespace framesink::test {
namespace {

void assign(const std::string& name, const std::optional<std::string>& value) {
  if (value) {
    setenv(name.c_str(), value->c_str(), 1);
  } else {
    unsetenv(name.c_str());
  }
}

}  // namespace

ScopedVariable::ScopedVariable(std::string name, const std::optional<std::string>& value)
    : name_(std::move(name)), previous_(environmentVariable(name_)) {
  assign(name_, value);
}

ScopedVariable::~ScopedVariable() { assign(name_, previous_); }

std::optional<std::string> environmentVariable(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  return value ? std::optional<std::string>(value) : std::nullopt;
}

}  // namespace framesink::test
