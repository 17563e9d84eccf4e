// An environment variable of this process, changed for a scope.
#pragma once

#include <optional>
#include <string>

namespace framesink::test {

// Sets `name`, or unsets it when `value` is empty (nullopt); the destructor puts back what was
// there. No other thread may touch the environment meanwhile.
class ScopedVariable {
 public:
  ScopedVariable(std::string name, const std::optional<std::string>& value);
  ~ScopedVariable();
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  std::string name_;
  std::optional<std::string> previous_;
};

// The variable's value, nullopt when it is not set.
std::optional<std::string> environmentVariable(const std::string& name);

}  // namespace framesink::test
