#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "domain/note_records.h"

namespace tavi {

/// A large text that is read in parts, so that it is never in memory as a whole.
struct TextInParts {
  std::size_t size = 0;
  /// Reads the bytes from `begin` to `end`, which are valid until the next call.
  std::function<std::string_view(std::size_t begin, std::size_t end)> read;
  std::size_t partSize = std::size_t{128} * 1024;
};

/// Finds a string in a note's text, ignoring case but not accents.
/// Characters are extended grapheme clusters (Unicode UAX #29).
struct TextSearcher {
  /// The matches, ascending by offset and not overlapping; none if the query is empty.
  /// `context`: characters of context in a snippet, >= 0; half of them, rounded down, precede the
  /// match. `limit`: the maximum number of matches, > 0; absent means all.
  static std::vector<SearchMatch> search(std::string_view text, std::string_view query,
                                         std::int64_t context, std::optional<std::int64_t> limit);
  /// The same in a large text.
  static std::vector<SearchMatch> search(const TextInParts& text, std::string_view query,
                                         std::int64_t context, std::optional<std::int64_t> limit);
};

}  // namespace tavi
