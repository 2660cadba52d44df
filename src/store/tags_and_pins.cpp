#include <algorithm>

#include "domain/store_errors.h"
#include "domain/tag_parser.h"
#include "platform/model/lists/fetch_request.h"
#include "store/database_store.h"
#include "store/note_conversion.h"
#include "store/preferences.h"

namespace tavi {

using tavimodel::KVNote;
using tavimodel::KVNoteTag;

std::optional<KVNoteTag> TaviDatabaseStore::findTag(const std::string& text) {
  const std::string name = TagParser::canonicalName(text);
  if (auto tag = KVNoteTag::tagWithName(name, context())) return tag;
  if (auto tag = KVNoteTag::tagWithName(text, context())) return tag;
  if (name.empty()) return std::nullopt;
  for (const KVNoteTag& tag : KVNoteTag::allTags(context())) {
    if (TagParser::canonicalName(tag.title()) == name) return tag;
  }
  return std::nullopt;
}

WriteResponse TaviDatabaseStore::addTags(const std::string& id,
                                         const std::vector<std::string>& tags) {
  KVNote& note = unlockedNoteWithID(id);
  const bool atBottom = TaviPreferences::tagsAtBottom();
  return change(note, [&] {
    for (const std::string& tag : tags) {
      const std::string name = TagParser::canonicalName(tag);
      KVNoteTag::getOrCreateTagWithName(name, context()).addTagToNotes({&note}, atBottom);
    }
  });
}

WriteResponse TaviDatabaseStore::removeTags(const std::string& id,
                                            const std::vector<std::string>& tags) {
  KVNote& note = unlockedNoteWithID(id);
  return change(note, [&] {
    for (const std::string& tag : tags) {
      // If another program wrote the text, it may contain a tag that has no row.
      const std::string name = TagParser::canonicalName(tag);
      const auto found = findTag(tag);
      const KVNoteTag named = found ? *found : KVNoteTag::getOrCreateTagWithName(name, context());
      named.deleteTagInNotes({&note});
    }
  });
}

std::int64_t TaviDatabaseStore::renameTag(const std::string& oldName, const std::string& newName) {
  const auto tag = findTag(oldName);
  if (!tag) return 0;
  const auto count = static_cast<std::int64_t>(tag->noteCountWithChildren());
  const std::string name = TagParser::canonicalName(newName);
  namingConflicts([&] { tag->renameTagWithTagNamed(name, TaviPreferences::tagsAtBottom()); });
  return count;
}

std::int64_t TaviDatabaseStore::deleteTag(const std::string& name) {
  const auto tag = findTag(name);
  if (!tag) return 0;
  const auto count = static_cast<std::int64_t>(tag->noteCount());
  tag->deleteTag();
  save();
  return count;
}

std::int64_t TaviDatabaseStore::tagNoteCount(const std::string& name) {
  const auto tag = findTag(name);
  return tag ? static_cast<std::int64_t>(tag->noteCountWithChildren()) : 0;
}

bool TaviDatabaseStore::tagExists(const std::string& name) {
  return KVNoteTag::tagWithName(name, context()).has_value();
}

WriteResponse TaviDatabaseStore::moveNote(const std::string& id, NoteLocation target) {
  KVNote& note = anyNoteWithID(id);
  const NoteLocation from = metadataOf(note).location;
  return change(note, [&] {
    if (from == target) return;
    if (from == NoteLocation::trash) note.restoreFromTrash();
    if (from == NoteLocation::archive) note.unarchive();
    if (target == NoteLocation::trash) note.trash();
    if (target == NoteLocation::archive) note.archive();
  });
}

std::vector<std::string> TaviDatabaseStore::listPins(const std::optional<std::string>& id) {
  if (id) return metadataOf(anyNoteWithID(*id)).pins;
  const std::vector<KVNoteTag> tags = KVNoteTag::tagsWithPins(context());
  std::vector<std::string_view> names;
  for (const KVNoteTag& tag : tags) names.push_back(tag.title());
  std::vector<std::string> pins = sortedHashtags(names);
  if (context().hasPinnedNote()) pins.insert(pins.begin(), "global");
  return pins;
}

WriteResponse TaviDatabaseStore::pinNote(const std::string& id) {
  KVNote& note = anyNoteWithID(id);
  return change(note, [&] { note.pin(); });
}

WriteResponse TaviDatabaseStore::unpinNote(const std::string& id) {
  KVNote& note = anyNoteWithID(id);
  return change(note, [&] { note.unpin(); });
}

KVNoteTag TaviDatabaseStore::tagForPin(const std::string& tag) {
  const std::string name = TagParser::canonicalName(tag);
  const auto found = KVNoteTag::tagWithName(name, context());
  if (!found) throw NoteStoreError::tagNotFound(name);
  return *found;
}

WriteResponse TaviDatabaseStore::pinNoteInTag(const std::string& id, const std::string& tag) {
  KVNote& note = anyNoteWithID(id);
  const KVNoteTag found = tagForPin(tag);
  return change(note, [&] { note.pinInTag(found.title()); });
}

WriteResponse TaviDatabaseStore::unpinNoteInTag(const std::string& id, const std::string& tag) {
  KVNote& note = anyNoteWithID(id);
  const KVNoteTag found = tagForPin(tag);
  return change(note, [&] { note.unpinInTag(found.title()); });
}

}  // namespace tavi
