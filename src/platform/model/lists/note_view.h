#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tavimodel {

/// A note's metadata, in memory that belongs to another object, which says how long the view is
/// valid.
struct NoteView {
  std::int64_t id = 0;
  std::string_view uniqueIdentifier;
  std::string_view title;              ///< empty if absent
  std::optional<double> creationDate;  ///< seconds since 1970-01-01 UTC
  std::optional<double> modificationDate;
  bool trashed = false;
  bool archived = false;
  bool pinned = false;
  bool encrypted = false;
  std::string_view digest;  ///< of the text, see TextFacts; empty if unknown
  std::int64_t length = 0;  ///< of the text, UTF-8 bytes
  std::int64_t todoIncomplete = 0;
  std::int64_t todoCompleted = 0;
  std::span<const std::string_view> tags;          ///< canonical names in code point order
  std::span<const std::string_view> pinnedInTags;  ///< canonical names, unordered
  std::span<const std::string_view> filenames;     ///< of the attachments, in note order
};

}  // namespace tavimodel
