#include "platform/model/objects/note_tag.h"

#include <algorithm>
#include <functional>
#include <unordered_set>

#include "platform/markdown/ast.h"
#include "platform/markdown/operations.h"
#include "platform/model/objects/managed_object_context.h"
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

/// Whether `name` is `tag` or a descendant of it.
bool isWithin(std::string_view name, std::string_view tag) {
  return name.starts_with(tag) && (name.size() == tag.size() || name[tag.size()] == '/');
}

std::string renamed(const std::string& name, const std::string& tag, const std::string& newName) {
  return isWithin(name, tag) ? newName + name.substr(tag.size()) : name;
}

/// The names of `tag` and its descendants in the note's rows that are not in its text.
std::vector<std::string> missingInText(KVNote& note, const ZDKAST& tree, const std::string& tag) {
  std::unordered_set<std::string> written;
  for (zephyrdown::HashtagMention& mention : tree.hashtags()) written.insert(mention.name);
  std::vector<std::string> missing;
  for (const std::string& name : note.tagsStrings()) {
    if (isWithin(name, tag) && !written.contains(name)) missing.push_back(name);
  }
  return missing;
}

void renameTag(KVNote& note, const std::string& tag, const std::string& newName, bool bottom) {
  Operations operations;
  std::vector<std::string> missing;
  {
    const ZDKAST tree = ZDKAST::viewing(note.text());
    missing = missingInText(note, tree, tag);
    operations = tree.renameHashtag(tag, newName);
  }
  if (!operations.empty() || !missing.empty()) rewrite(note, operations);
  for (const std::string& name : missing) addTag(note, renamed(name, tag, newName), bottom);
}

/// Changes the tag rows of a locked note, whose text stays as it is. `plan` returns the new name of
/// a tag; if absent, the tag is removed.
void relabel(KVNote& note,
             const std::function<std::optional<std::string>(const std::string&)>& plan) {
  std::vector<std::string> names;
  std::unordered_set<std::string> known;
  for (const std::string& name : note.tagsStrings()) {
    auto now = plan(name);
    if (now && known.insert(*now).second) names.push_back(std::move(*now));
  }
  note.setTagsStrings(std::move(names));
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
    relabel(*note, [&](const std::string& name) {
      return name == title_ ? std::nullopt : std::optional(name);
    });
  }
}

void KVNoteTag::renameTagWithTagNamed(const std::string& newName, bool bottom) const {
  if (newName == title_) return;
  for (KVNote* note : context_->notesWithTag(title_, true)) {
    if (!note->encryptedValue()) {
      renameTag(*note, title_, newName, bottom);
      continue;
    }
    relabel(*note, [&](const std::string& name) { return renamed(name, title_, newName); });
  }
  for (KVNote* note : context_->notesPinnedIn(title_, true)) {
    const std::vector<std::string> pins = note->pinnedInTags();
    for (const std::string& pin : pins) {
      const std::string now = renamed(pin, title_, newName);
      if (now == pin) continue;
      note->unpinInTag(pin);
      note->pinInTag(now);
    }
  }
}

void KVNoteTag::deleteTag() const {
  deleteTagInNotes(notes());
  for (KVNote* note : context_->notesPinnedIn(title_, false)) note->unpinInTag(title_);
}

}  // namespace tavimodel
