#pragma once

#include <optional>
#include <string>
#include <vector>

#include "domain/note_records.h"
#include "domain/note_store.h"

namespace tavi {

/// A note as another place keeps it, to be taken in with all that is known of it.
struct ImportedNote {
  struct File {
    std::string filename;  ///< as the text links it; see addAttachment for what a name may be
    std::string bytes;
  };

  std::string id;                            ///< its unique identifier; empty: a new one
  std::string text;                          ///< title and tags are derived from it
  std::optional<Instant> created, modified;  ///< absent: not known
  std::vector<std::string> pins;             ///< "global", or the name of a tag
  NoteLocation location = NoteLocation::notes;
  std::vector<File> files;  ///< in note order; names differ
};

/// A store that also takes in whole notes, many to a save. The guards are those of every write: a
/// save happens whole or not at all, and what it saved is durable when it returns.
class ImportingStore : public NoteStore {
 public:
  /// Holds the note, its files' bytes on the disk already, for the next `saveImported`. False, and
  /// nothing is held, when a note of this id is in the database, be it in the trash. Of several
  /// notes held, no two may have one id. Throws std::system_error when bytes cannot be written and
  /// std::runtime_error for a file name that cannot be stored; then nothing that was held is kept.
  virtual bool importNote(const ImportedNote& note) = 0;
  /// Saves what is held, in one transaction, and forgets everything read so far.
  virtual void saveImported() = 0;
};

}  // namespace tavi
