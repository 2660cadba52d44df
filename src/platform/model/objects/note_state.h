#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/model/objects/note_file.h"
#include "platform/model/storage/note_row.h"
#include "platform/system/hashing.h"

namespace tavimodel {

/// A note with its text, tags, pins and files. Absent members have not been read yet.
struct NoteState {
  NoteRow row;
  std::shared_ptr<const std::string> text;  ///< shared by copies of the state, since it may be huge
  /// Of a large text that has been read and freed again.
  std::optional<platform::system::SHA256Digest> textDigest;
  std::optional<std::vector<std::string>> tags;          ///< canonical names, unordered
  std::optional<std::vector<std::string>> pinnedInTags;  ///< names of tags, unordered
  std::optional<std::vector<KVNoteFile>> files;          ///< in the note's order
};

/// A note's current and committed state in its context.
struct HeldNote {
  NoteState now;
  std::unique_ptr<NoteState> committed;  ///< the state in the database; null if nothing has changed
};

}  // namespace tavimodel
