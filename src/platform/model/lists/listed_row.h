#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tavimodel {

/// What a list keeps of each of its notes: 56 bytes, for there may be a million.
struct ListedRow {
  std::int64_t id = 0;
  const char* texts = nullptr;  ///< the identifier, and the title right after it
  std::uint32_t identifierLength = 0;
  std::uint32_t titleLength = 0;
  double created = 0;  ///< seconds since 1970-01-01 UTC; not a number: absent
  double modified = 0;
  std::uint32_t firstTag = 0;  ///< in the list's one sequence of tags
  std::uint32_t tagCount = 0;
  bool trashed = false;
  bool archived = false;
  bool pinned = false;
  bool encrypted = false;

  std::string_view uniqueIdentifier() const { return {texts, identifierLength}; }
  /// Empty when absent.
  std::string_view title() const { return {texts + identifierLength, titleLength}; }
  static std::optional<double> date(double seconds) {
    return std::isnan(seconds) ? std::nullopt : std::optional(seconds);
  }
};

}  // namespace tavimodel
