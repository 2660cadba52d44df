#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tavimodel {

/// All that is known of a note but its text, wherever it is held. Its holder says how long it is
/// valid.
struct NoteView {
  std::int64_t id = 0;
  std::string_view uniqueIdentifier;
  std::string_view title;              ///< absent is empty
  std::optional<double> creationDate;  ///< seconds since 1970-01-01 UTC
  std::optional<double> modificationDate;
  bool trashed = false;
  bool archived = false;
  bool pinned = false;
  bool encrypted = false;
  std::string_view digest;  ///< of the text, see TextFacts; empty: not known
  std::int64_t length = 0;  ///< of the text, UTF-8 bytes
  std::int64_t todoIncomplete = 0;
  std::int64_t todoCompleted = 0;
  std::span<const std::string_view> tags;          ///< canonical names, by code points
  std::span<const std::string_view> pinnedInTags;  ///< the same, without order
  std::span<const std::string_view> filenames;     ///< of the attachments, in note order
};

}  // namespace tavimodel
