#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "domain/note_records.h"

namespace tavi {

/// Finds a string in one note's text, ignoring case but not accents.
/// Characters are extended grapheme clusters (Unicode UAX #29).
struct TextSearcher {
  /// Ascending by offset, never overlapping; empty when the query is empty.
  /// `context`: characters kept around the match, >= 0; half before it, the odd one after it.
  /// `limit`: greater than 0; absent means all.
  static std::vector<SearchMatch> search(std::string_view text, std::string_view query,
                                         std::int64_t context, std::optional<std::int64_t> limit);
};

}  // namespace tavi
