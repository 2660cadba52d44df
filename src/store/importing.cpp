#include "domain/tag_parser.h"
#include "platform/model/objects/note_file.h"
#include "store/database_store.h"
#include "store/temporary_file.h"

namespace tavi {

using tavimodel::KVNote;
using tavimodel::KVNoteFile;

namespace {

std::optional<double> seconds(const std::optional<Instant>& instant) {
  return instant ? std::optional(instant->seconds) : std::nullopt;
}

void place(KVNote& note, const ImportedNote& imported) {
  if (imported.location == NoteLocation::trash) note.trash();
  if (imported.location == NoteLocation::archive) note.archive();
  for (const std::string& pin : imported.pins) {
    if (pin == "global") {
      note.pin();
    } else if (const std::string tag = TagParser::canonicalName(pin); !tag.empty()) {
      note.pinInTag(tag);
    }
  }
}

}  // namespace

bool TaviDatabaseStore::importNote(const ImportedNote& imported) {
  const bool isNew = imported.id.empty();
  if (!isNew && KVNote::noteWithUniqueIdentifier(imported.id, context()) != nullptr) return false;
  try {
    KVNote& note = KVNote::noteWithText(imported.text,
                                        {.uniqueIdentifier = imported.id,
                                         .creationDate = seconds(imported.created),
                                         .modificationDate = seconds(imported.modified)},
                                        context());
    place(note, imported);
    for (const ImportedNote::File& file : imported.files) {
      KVNoteFile::checkName(file.filename);
      const TemporaryFile temporary(file.bytes, file.filename);
      KVNoteFile::getOrCreateFileFromURL(temporary.path(), note);
    }
  } catch (...) {
    context().rollback();
    throw;
  }
  return true;
}

void TaviDatabaseStore::saveImported() {
  save();
  context().reset();
}

}  // namespace tavi
