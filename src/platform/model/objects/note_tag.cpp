#include "platform/model/objects/note_tag.h"

#include <algorithm>
#include <unordered_set>

#include "platform/markdown/ast.h"
#include "platform/markdown/operations.h"
#include "platform/model/objects/managed_object_context.h"
#include "platform/model/objects/tag_renaming.h"
#include "platform/model/storage/tag_tree.h"

namespace tavimodel {
namespace {

using zephyrdown::ZDKAST;
using Operations = std::vector<zephyrdown::ZDKASTOperationResult>;

void rewrite(KVNote& note, const Operations& operations) {
  note.updateNoteWithText(zephyrdown::withOperations(note.text(), operations), false);
}

/// Whether the note has a row for the tag. Rows may disagree with the text if another program wrote
/// them, or if the text was locked when the tag was renamed; updating the text derives them again.
bool hasRow(KVNote& note, const std::string& tag) {
  const std::vector<std::string>& rows = note.tagsStrings();
  return std::find(rows.begin(), rows.end(), tag) != rows.end();
}

void addTag(KVNote& note, const std::string& tag, bool bottom) {
  const Operations operations = ZDKAST::viewing(note.text()).addHashtag(tag, bottom);
  if (!operations.empty() || !hasRow(note, tag)) rewrite(note, operations);
}

void removeTag(KVNote& note, const std::string& tag) {
  const Operations operations = ZDKAST::viewing(note.text()).removeHashtag(tag);
  if (!operations.empty() || hasRow(note, tag)) rewrite(note, operations);
}

}  // namespace

std::vector<KVNoteTag> KVNoteTag::populatedNotesTags(ManagedObjectContext& context) {
  // Ignores rows whose note does not exist.
  sqlite::Query query = context.reading().query(
      "SELECT title FROM tag WHERE EXISTS (SELECT 1 FROM noteTag JOIN noteSummary s "
      "ON s.note = noteTag.note WHERE noteTag.tag = tag.id "
      "AND ifnull(s.permanentlyDeleted, 0) = 0)");
  std::vector<KVNoteTag> tags;
  while (query.step()) tags.push_back({context, std::string(query.text(0))});
  return tags;
}

std::vector<KVNoteTag> KVNoteTag::tagsWithPins(ManagedObjectContext& context) {
  sqlite::Query query = context.reading().query(
      "SELECT title FROM tag WHERE EXISTS (SELECT 1 FROM pinnedInTag WHERE pinnedInTag.tag = "
      "tag.id)");
  std::vector<KVNoteTag> tags;
  while (query.step()) tags.push_back({context, std::string(query.text(0))});
  return tags;
}

std::vector<KVNoteTag> KVNoteTag::allTags(ManagedObjectContext& context) {
  sqlite::Query query = context.reading().query("SELECT title FROM tag");
  std::vector<KVNoteTag> tags;
  while (query.step()) tags.push_back({context, std::string(query.text(0))});
  return tags;
}

std::optional<KVNoteTag> KVNoteTag::tagWithName(std::string_view name,
                                                ManagedObjectContext& context) {
  // Another program may have added the tag without its ancestors.
  sqlite::Query query =
      context.reading().query("SELECT 1 FROM tag WHERE " + isInTagTree("title", "?1") + " LIMIT 1");
  query.bind(1, name);
  if (name.empty() || !query.step()) return std::nullopt;
  return KVNoteTag(context, std::string(name));
}

KVNoteTag KVNoteTag::getOrCreateTagWithName(std::string_view name, ManagedObjectContext& context) {
  return {context, std::string(name)};
}

std::vector<KVNote*> KVNoteTag::notes() const {
  return context_->notesWithTag(title_, false);
}

std::size_t KVNoteTag::noteCount() const {
  sqlite::Query query = context_->reading().query(
      "SELECT count(*) FROM noteTag JOIN noteSummary s ON s.note = noteTag.note "
      "WHERE noteTag.tag = (SELECT id FROM tag WHERE title = ?1)");
  query.bind(1, title_).step();
  return static_cast<std::size_t>(query.integer(0));
}

std::size_t KVNoteTag::noteCountWithChildren() const {
  sqlite::Query query = context_->reading().query(
      "SELECT count(*) FROM noteSummary s WHERE s.note IN (SELECT note FROM noteTag WHERE tag IN "
      "(SELECT id FROM tag WHERE title = ?1 OR (title > ?1 || '/' AND title < ?1 || '0')))");
  query.bind(1, title_).step();
  return static_cast<std::size_t>(query.integer(0));
}

void KVNoteTag::addTagToNotes(const std::vector<KVNote*>& notes, bool bottom) const {
  for (KVNote* note : notes) addTag(*note, title_, bottom);
}

void KVNoteTag::deleteTagInNotes(const std::vector<KVNote*>& notes) const {
  for (KVNote* note : notes) {
    if (!note->encryptedValue()) {
      removeTag(*note, title_);
      continue;
    }
    std::vector<std::string> names = note->tagsStrings();
    std::erase(names, title_);
    note->setTagsStrings(std::move(names));
  }
}

void KVNoteTag::renameTagWithTagNamed(const std::string& newName, bool bottom) const {
  if (newName == title_) return;
  std::vector<KVNote*> notes = context_->notesWithTag(title_, true);
  const std::vector<KVNote*> withPins = context_->notesPinnedIn(title_, true);
  const std::unordered_set<KVNote*> tagged(notes.begin(), notes.end());
  const std::unordered_set<KVNote*> pinned(withPins.begin(), withPins.end());
  for (KVNote* note : withPins) {
    if (!tagged.contains(note)) notes.push_back(note);
  }
  const TagRenaming renaming(title_, newName, bottom);
  context_->saveEach(notes, [&](KVNote& note) {
    NoteChange change;
    if (tagged.contains(&note)) change = renaming.ofNote(note);
    if (!pinned.contains(&note)) return change;
    change.apply = [&, rename = std::move(change.apply)] {
      if (rename) rename();
      renaming.movePins(note);
    };
    return change;
  });
}

void KVNoteTag::deleteTag() const {
  deleteTagInNotes(notes());
  for (KVNote* note : context_->notesPinnedIn(title_, false)) note->unpinInTag(title_);
}

}  // namespace tavimodel
