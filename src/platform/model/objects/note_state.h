#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/model/objects/note_file.h"
#include "platform/model/storage/note_row.h"
#include "platform/system/hashing.h"

namespace tavimodel {

/// A note and what belongs to it. What is absent has not been read from the database.
struct NoteState {
  NoteRow row;
  std::shared_ptr<const std::string> text;  ///< shared by copies of the state, for it may be huge
  /// Of a large text that was read, and is no longer kept.
  std::optional<platform::system::SHA256Digest> textDigest;
  std::optional<std::vector<std::string>> tags;          ///< canonical names, without order
  std::optional<std::vector<std::string>> pinnedInTags;  ///< names of tags, without order
  std::optional<std::vector<KVNoteFile>> files;          ///< in the note's order
};

/// A note as its context holds it, from the first read to the end of the context.
struct HeldNote {
  NoteState now;
  std::unique_ptr<NoteState> committed;  ///< what the database holds; null: nothing has changed
};

}  // namespace tavimodel
