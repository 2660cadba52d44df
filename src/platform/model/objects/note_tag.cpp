#include "platform/model/objects/note_tag.h"

#include <algorithm>
#include <functional>

#include "platform/markdown/ast.h"
#include "platform/model/objects/managed_object_context.h"
#include "platform/model/storage/tag_tree.h"

namespace tavimodel {
namespace {

using zephyrdown::ZDKAST;
using TextPlan = std::function<std::vector<zephyrdown::ZDKASTOperationResult>(const ZDKAST&)>;
/// The name that a tag has from now on; nothing when it is gone.
using NamePlan = std::function<std::optional<std::string>(const std::string&)>;

void rewriteText(KVNote& note, const TextPlan& plan) {
  ZDKAST tree = ZDKAST::fromMarkdown(note.text());
  const auto results = plan(tree);
  if (results.empty()) return;
  tree.applyTextOperationResults(results);
  note.updateNoteWithText(tree.markdown(), false, UnlinkedFiles::keep);
}

void relabel(KVNote& note, const NamePlan& plan) {
  std::vector<std::string> names;
  for (const std::string& name : note.tagsStrings()) {
    const auto now = plan(name);
    if (now && std::find(names.begin(), names.end(), *now) == names.end()) names.push_back(*now);
  }
  note.setTagsStrings(std::move(names));
}

/// Changes the tags of each note: in its text, which has them, or where that is locked, by name.
void change(const std::vector<KVNote*>& notes, const TextPlan& inText, const NamePlan& byName) {
  for (KVNote* note : notes) {
    if (note->encryptedValue()) {
      relabel(*note, byName);
    } else {
      rewriteText(*note, inText);
    }
  }
}

/// The name of a tag when `tag`, which is this one, one above it, or neither, is called `newName`.
std::string renamed(const std::string& name, const std::string& tag, const std::string& newName) {
  const bool isOrIsBelow =
      name.starts_with(tag) && (name.size() == tag.size() || name[tag.size()] == '/');
  return isOrIsBelow ? newName + name.substr(tag.size()) : name;
}

}  // namespace

std::vector<KVNoteTag> KVNoteTag::populatedNotesTags(ManagedObjectContext& context) {
  // Orphans of a note that is gone do not count.
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

std::optional<KVNoteTag> KVNoteTag::tagWithName(std::string_view name,
                                                ManagedObjectContext& context) {
  // A program that writes tags itself may have left the ancestors out.
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

void KVNoteTag::addTagToNotes(const std::vector<KVNote*>& notes, bool bottom) const {
  for (KVNote* note : notes) {
    rewriteText(*note, [&](const ZDKAST& tree) { return tree.addHashtag(title_, bottom); });
  }
}

void KVNoteTag::deleteTagInNotes(const std::vector<KVNote*>& notes) const {
  change(
      notes, [&](const ZDKAST& tree) { return tree.removeHashtag(title_); },
      [&](const std::string& name) { return name == title_ ? std::nullopt : std::optional(name); });
}

void KVNoteTag::renameTagWithTagNamed(const std::string& newName) const {
  change(
      context_->notesWithTag(title_, true),
      [&](const ZDKAST& tree) { return tree.renameHashtag(title_, newName); },
      [&](const std::string& name) { return renamed(name, title_, newName); });
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
