#include "operations/tag_operations.h"

#include "domain/store_errors.h"
#include "domain/tag_parser.h"
#include "operations/note_resolver.h"
#include "operations/tag_name.h"

namespace tavi {
namespace {

void requireTags(const std::vector<std::string>& tags) {
  if (tags.empty()) throw OperationError::invalidInput("Provide at least one tag");
}

/// Like `checkedTagName`, but accepts an existing tag that cannot be written as a hashtag (another
/// program may have created it), so that it can be removed.
std::string nameToRemove(const std::string& text, const char* label, NoteStore& store) {
  const bool isOdd = !text.empty() && TagParser::canonicalName(text).empty();
  return isOdd && store.tagExists(text) ? text : checkedTagName(text, label);
}

}  // namespace

std::vector<std::string> ListTagsOp::execute(const Input& input, NoteStore& store) {
  if (!input.id && !input.title) return store.listTags(std::nullopt);
  return store.listTags(
      OperationNoteResolver::resolveNoteIDEvenIfLocked(input.id, input.title, store));
}

WriteResponse AddTagsOp::execute(const Input& input, NoteStore& store) {
  requireTags(input.tags);
  std::vector<std::string> names;
  for (const std::string& tag : input.tags) names.push_back(checkedTagName(tag, "Tag name"));
  return store.addTags(OperationNoteResolver::resolveNoteID(input.id, input.title, store), names);
}

WriteResponse RemoveTagsOp::execute(const Input& input, NoteStore& store) {
  requireTags(input.tags);
  std::vector<std::string> names;
  for (const std::string& tag : input.tags) names.push_back(nameToRemove(tag, "Tag name", store));
  return store.removeTags(OperationNoteResolver::resolveNoteID(input.id, input.title, store),
                          names);
}

std::int64_t RenameTagOp::execute(const Input& input, NoteStore& store) {
  const std::string oldName = checkedTagName(input.oldName, "Old");
  const std::string newName = checkedTagName(input.newName, "New");
  const bool merges =
      oldName != newName && !input.force && store.tagExists(oldName) && store.tagExists(newName);
  if (merges) throw NoteStoreError::renameTargetExists(newName, store.tagNoteCount(oldName));
  return store.renameTag(oldName, newName);
}

std::int64_t DeleteTagOp::execute(const Input& input, NoteStore& store) {
  return store.deleteTag(nameToRemove(input.tag, "Tag", store));
}

}  // namespace tavi
