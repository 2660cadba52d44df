#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

/// Conversions between an enumeration and its texts, given an array of the texts in the order of
/// the values, which must count from 0.
namespace tavi {

template <class Enum, std::size_t size>
constexpr std::string_view textOf(const std::array<std::string_view, size>& texts, Enum value) {
  return texts[static_cast<std::size_t>(value)];
}

/// The value with exactly this text; absent if there is none.
template <class Enum, std::size_t size>
constexpr std::optional<Enum> valueOf(const std::array<std::string_view, size>& texts,
                                      std::string_view text) {
  const auto place = std::find(texts.begin(), texts.end(), text);
  if (place == texts.end()) return std::nullopt;
  return static_cast<Enum>(place - texts.begin());
}

}  // namespace tavi
