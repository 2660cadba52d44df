#include "platform/model/note_tag.h"

#include <algorithm>
#include <functional>

#include "platform/markdown/ast.h"
#include "platform/model/managed_object_context.h"

namespace tavimodel {
namespace {

using zephyrdown::ZDKAST;
using Results = std::vector<zephyrdown::ZDKASTOperationResult>;

/// Rewrites the text of each note as `plan` says for its tree.
void rewrite(const std::vector<KVNote*>& notes, const std::function<Results(const ZDKAST&)>& plan) {
  for (KVNote* note : notes) {
    ZDKAST tree = ZDKAST::fromMarkdown(note->text());
    const Results results = plan(tree);
    if (results.empty()) continue;
    tree.applyTextOperationResults(results);
    note->updateNoteWithText(tree.markdown(), false);
  }
}

bool isBelow(std::string_view name, std::string_view ancestor) {
  return name.size() > ancestor.size() && name.starts_with(ancestor) &&
         name[ancestor.size()] == '/';
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
  const Predicate predicate = Predicate::withFormat("pinnedNotes.@count > 0");
  sqlite::Query query = context.reading().query("SELECT title FROM tag WHERE " + predicate.sql());
  std::vector<KVNoteTag> tags;
  while (query.step()) tags.push_back({context, std::string(query.text(0))});
  return tags;
}

std::optional<KVNoteTag> KVNoteTag::tagWithName(std::string_view name,
                                                ManagedObjectContext& context) {
  // A program that writes tags itself may have left the ancestors out.
  sqlite::Query query = context.reading().query(
      "SELECT 1 FROM tag WHERE title = ?1 OR (title > ?1 || '/' AND title < ?1 || '0') LIMIT 1");
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
  rewrite(notes, [&](const ZDKAST& tree) { return tree.addHashtag(title_, bottom); });
}

void KVNoteTag::deleteTagInNotes(const std::vector<KVNote*>& notes) const {
  rewrite(notes, [&](const ZDKAST& tree) { return tree.removeHashtag(title_); });
}

void KVNoteTag::renameTagWithTagNamed(const std::string& newName) const {
  rewrite(context_->notesWithTag(title_, true),
          [&](const ZDKAST& tree) { return tree.renameHashtag(title_, newName); });
  for (KVNote* note : context_->notesPinnedIn(title_, true)) {
    const std::vector<std::string> pins = note->pinnedInTags();
    for (const std::string& pin : pins) {
      if (pin != title_ && !isBelow(pin, title_)) continue;
      note->unpinInTag(pin);
      note->pinInTag(newName + pin.substr(title_.size()));
    }
  }
}

void KVNoteTag::deleteTag() const {
  deleteTagInNotes(notes());
  for (KVNote* note : context_->notesPinnedIn(title_, false)) note->unpinInTag(title_);
}

}  // namespace tavimodel
