#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

/// Enumerations whose values are written as texts. The texts stand in an array in the order of the
/// values, which count from 0.
namespace tavi {

template <class Enum, std::size_t size>
constexpr std::string_view textOf(const std::array<std::string_view, size>& texts, Enum value) {
  return texts[static_cast<std::size_t>(value)];
}

/// The value that is written exactly so, or nothing.
template <class Enum, std::size_t size>
constexpr std::optional<Enum> valueOf(const std::array<std::string_view, size>& texts,
                                      std::string_view text) {
  const auto place = std::find(texts.begin(), texts.end(), text);
  if (place == texts.end()) return std::nullopt;
  return static_cast<Enum>(place - texts.begin());
}

}  // namespace tavi
