#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "domain/note_records.h"

namespace tavi {

/// Finds a string in a note's text, ignoring case but not accents.
/// Characters are extended grapheme clusters (Unicode UAX #29).
struct TextSearcher {
  /// The matches, ascending by offset and not overlapping; none if the query is empty.
  /// `context`: characters of context in a snippet, >= 0; half of them, rounded down, precede the
  /// match. `limit`: the maximum number of matches, > 0; absent means all.
  static std::vector<SearchMatch> search(std::string_view text, std::string_view query,
                                         std::int64_t context, std::optional<std::int64_t> limit);
};

}  // namespace tavi
