// Numbers in the command line's words.
#pragma once

#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

namespace framesink::play {

// Returns the number that `text` spells, or nothing if `text` holds anything else.
template <class Number>
std::optional<Number> wholeNumber(const std::string& text) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return number;
}

inline std::optional<double> finiteNumber(const std::string& text) {
  const auto number = wholeNumber<double>(text);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

// Returns two integers that `separator` divides, or nothing.
inline std::optional<std::pair<int, int>> pairOf(const std::string& text, char separator) {
  const auto middle = text.find(separator);
  if (middle == std::string::npos) return std::nullopt;
  const auto first = wholeNumber<int>(text.substr(0, middle));
  const auto second = wholeNumber<int>(text.substr(middle + 1));
  if (!first || !second) return std::nullopt;
  return std::pair{*first, *second};
}

}  // namespace framesink::play
