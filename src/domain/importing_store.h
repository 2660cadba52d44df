#pragma once

#include <optional>
#include <string>
#include <vector>

#include "domain/note_records.h"
#include "domain/note_store.h"

namespace tavi {

/// A note from outside the store, with its attachments and all metadata that the source has.
struct ImportedNote {
  /// An attachment.
  struct File {
    std::string filename;  ///< as the text links it; addAttachment says which names are valid
    std::string bytes;
  };

  std::string id;                            ///< the unique identifier; empty: the store makes one
  std::string text;                          ///< Markdown; title and tags are derived from it
  std::optional<Instant> created, modified;  ///< absent: unknown
  std::vector<std::string> pins;             ///< "global", or the name of a tag
  NoteLocation location = NoteLocation::notes;
  std::vector<File> files;  ///< in the order of their links; no two have the same name
};

/// A store that can also import complete notes, many in one save. As with every write, a save is
/// atomic, and durable when it returns.
class ImportingStore : public NoteStore {
 public:
  /// Adds the note to those that the next `saveImported` saves; its files' bytes are written to
  /// disk at once. Returns false and adds nothing if the database has a note of this id, even in
  /// the trash. No two added notes may have the same id. Throws std::system_error if bytes cannot
  /// be written and std::runtime_error for an invalid file name; then all added notes are
  /// discarded.
  virtual bool importNote(const ImportedNote& note) = 0;
  /// Saves the added notes in one transaction, then resets the store (see `reset`).
  virtual void saveImported() = 0;
};

}  // namespace tavi
