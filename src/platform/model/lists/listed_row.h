#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tavimodel {

/// One note of a list in memory: only 56 bytes, since a list may have a million notes.
struct ListedRow {
  std::int64_t id = 0;
  const char* texts = nullptr;  ///< the identifier, directly followed by the title
  std::uint32_t identifierLength = 0;
  std::uint32_t titleLength = 0;
  double created = 0;  ///< seconds since 1970-01-01 UTC; NaN if absent
  double modified = 0;
  std::uint32_t firstTag = 0;  ///< index in NoteTable::tags_
  std::uint32_t tagCount = 0;
  bool trashed = false;
  bool archived = false;
  bool pinned = false;
  bool encrypted = false;

  std::string_view uniqueIdentifier() const { return {texts, identifierLength}; }
  /// Empty if the note has none.
  std::string_view title() const { return {texts + identifierLength, titleLength}; }
  static std::optional<double> date(double seconds) {
    return std::isnan(seconds) ? std::nullopt : std::optional(seconds);
  }
};

}  // namespace tavimodel
