// An environment variable of this process, changed for a scope.
#pragma once

#include <optional>
#include <string>

namespace framesink::test {

// Sets `name`, or unsets it if `value` is nullopt; the destructor restores the old value. No other
// thread may use the environment meanwhile.
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

// The variable's value; nullopt if it is not set.
std::optional<std::string> environmentVariable(const std::string& name);

}  // namespace framesink::test
