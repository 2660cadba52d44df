#include "domain/store_errors.h"
#include "domain/text_searcher.h"
#include "store/database_store.h"
#include "store/note_conversion.h"

namespace tavi {

using tavimodel::KVNote;
using tavimodel::KVNoteTag;

KVNote& TaviDatabaseStore::anyNoteWithID(const std::string& id) {
  KVNote* note = KVNote::noteWithUniqueIdentifier(id, context());
  if (note == nullptr) throw NoteStoreError::noteNotFound(id);
  return *note;
}

KVNote& TaviDatabaseStore::unlockedNoteWithID(const std::string& id) {
  KVNote& note = anyNoteWithID(id);
  if (note.encryptedValue()) throw NoteStoreError::noteIsLocked(id);
  return note;
}

std::vector<KVNote*> TaviDatabaseStore::activeNotesWithTitle(const std::string& title) {
  std::vector<KVNote*> notes = KVNote::notesWithTitle(title, context());
  std::erase_if(notes,
                [](const KVNote* note) { return note->trashedValue() || note->archivedValue(); });
  return notes;
}

KVNote* TaviDatabaseStore::onlyActiveNoteWithTitle(const std::string& title) {
  const std::vector<KVNote*> notes = activeNotesWithTitle(title);
  if (notes.size() > 1) {
    throw NoteStoreError::titleMatchesMultiple(title, static_cast<std::int64_t>(notes.size()));
  }
  return notes.empty() ? nullptr : notes.front();
}

KVNote& TaviDatabaseStore::noteForTitle(const std::string& title) {
  KVNote* note = onlyActiveNoteWithTitle(title);
  if (note == nullptr) throw NoteStoreError::noNoteWithTitle(title);
  return *note;
}

Note TaviDatabaseStore::noteWithID(const std::string& id) {
  return noteOf(unlockedNoteWithID(id));
}

Note TaviDatabaseStore::noteWithTitle(const std::string& title) {
  KVNote& note = noteForTitle(title);
  if (note.encryptedValue()) throw NoteStoreError::noteIsLocked(title);
  return noteOf(note);
}

NoteMetadata TaviDatabaseStore::metadataWithID(const std::string& id) {
  return metadataOf(anyNoteWithID(id));
}

NoteMetadata TaviDatabaseStore::metadataWithTitle(const std::string& title) {
  return metadataOf(noteForTitle(title));
}

std::vector<SearchMatch> TaviDatabaseStore::searchInNote(const std::string& id,
                                                         const std::string& string,
                                                         std::int64_t context,
                                                         std::optional<std::int64_t> limit) {
  KVNote& note = unlockedNoteWithID(id);
  if (auto large = note.textInParts()) {
    const auto read = [&](std::size_t begin, std::size_t end) { return large->part(begin, end); };
    return TextSearcher::search(TextInParts{large->size(), read}, string, context, limit);
  }
  std::vector<SearchMatch> matches;
  note.readText(
      [&](std::string_view text) { matches = TextSearcher::search(text, string, context, limit); });
  return matches;
}

std::vector<std::string> TaviDatabaseStore::listTags(const std::optional<std::string>& id) {
  if (id) return sortedByCodePoints(anyNoteWithID(*id).tagsStrings());
  std::vector<std::string> names;
  for (const KVNoteTag& tag : KVNoteTag::populatedNotesTags(context()))
    names.push_back(tag.title());
  return sortedByCodePoints(std::move(names));
}

}  // namespace tavi
