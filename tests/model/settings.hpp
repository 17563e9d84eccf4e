// What a user of the tests may set in the environment. See model_test.cpp.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>

#include "support/scoped_variable.hpp"

namespace framesink::model {

inline std::uint32_t setting(const std::string& name, std::uint32_t usual) {
  const auto value = test::environmentVariable(name);
  return value ? static_cast<std::uint32_t>(std::atoi(value->c_str())) : usual;
}

}  // namespace framesink::model
