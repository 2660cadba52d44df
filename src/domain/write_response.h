#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "domain/note_records.h"

namespace tavi {

/// The result of a write. An absent field did not change or was not requested. The order of the
/// fields is that of the output; unlike in NoteMetadata, `pins` is next to the other lists.
struct WriteResponse {
  std::optional<std::string> id;
  std::optional<std::string> title;
  std::optional<bool> locked;
  std::optional<std::string> contentHash;
  std::optional<std::int64_t> contentLength;
  std::optional<Instant> created;
  std::optional<Instant> modified;
  std::optional<NoteLocation> location;
  std::optional<std::int64_t> todos;
  std::optional<std::int64_t> done;
  std::optional<std::vector<std::string>> pins;
  std::optional<std::vector<std::string>> tags;
  std::optional<std::vector<std::string>> attachments;
  std::optional<std::string> content;

  /// All thirteen metadata fields of a new note, and its text if given.
  static WriteResponse full(const NoteMetadata& post, std::optional<std::string> content = {});

  /// The fields that differ, with their values in `post`; never the id. Lists are compared as sets,
  /// so order and repetition do not count as a change; a changed list is given in full.
  static WriteResponse difference(const NoteMetadata& pre, const NoteMetadata& post);
};

}  // namespace tavi
