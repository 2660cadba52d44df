#include "operations/write_operations.h"

#include <array>
#include <string_view>
#include <utility>

#include "operations/note_resolver.h"
#include "platform/text/folding.h"
#include "platform/text/utf8.h"

namespace tavi {
namespace {

bool isBlank(const std::string& text) {
  return platform::text::trimmingWhitespaceAndNewlines(text).empty();
}

/// The length in bytes of the line break at the start of `text`: CR LF, or one of U+000A to U+000D,
/// U+0085, U+2028 and U+2029; 0 if there is none.
std::size_t lineBreakLength(std::string_view text) {
  if (text.starts_with("\r\n")) return 2;
  if (!text.empty() && text[0] >= '\n' && text[0] <= '\r') return 1;
  for (std::string_view lineBreak : {"\u0085", "\u2028", "\u2029"})
    if (text.starts_with(lineBreak)) return lineBreak.size();
  return 0;
}

/// Drops a first line that repeats the title as a heading, since the store writes that heading.
/// Absent if no other content is left.
std::optional<std::string> withoutRepeatedTitle(const std::optional<std::string>& content,
                                                const std::string& title) {
  if (!content) return std::nullopt;
  const std::string_view text = *content;
  std::size_t lineEnd = 0;
  while (lineEnd < text.size() && lineBreakLength(text.substr(lineEnd)) == 0) ++lineEnd;

  const std::string_view firstLine = platform::text::trimmingBlanks(text.substr(0, lineEnd));
  if (!platform::text::equalIgnoringCase(firstLine, "# " + title)) return content;
  const std::string_view rest = text.substr(lineEnd + lineBreakLength(text.substr(lineEnd)));
  if (rest.empty()) return std::nullopt;
  return std::string(rest);
}

InsertPosition parsedPosition(const std::optional<std::string>& text) {
  if (!text) return InsertPosition::end;
  if (const auto position = insertPosition(*text)) return *position;
  throw OperationError::invalidInput("Invalid position: " + *text);
}

/// `index`: of the edit, from 0, for the message.
EditOperation checkedEdit(const NoteEdit& edit, std::size_t index) {
  using Kind = EditAction::Kind;
  std::vector<EditAction> actions;
  if (edit.replace) actions.push_back({Kind::replace, *edit.replace});
  if (edit.insertAfter) actions.push_back({Kind::insertAfter, *edit.insertAfter});
  if (edit.insertBefore) actions.push_back({Kind::insertBefore, *edit.insertBefore});
  if (actions.size() != 1) {
    throw OperationError::invalidInput(
        "Edit " + std::to_string(index) +
        (actions.empty() ? ": one of replace, insertAfter, or insertBefore is required"
                         : ": replace, insertAfter, and insertBefore are mutually exclusive"));
  }
  return {edit.find, std::move(actions[0]), edit.all, edit.ignoreCase, edit.word};
}

std::vector<EditOperation> checkedEdits(const std::vector<NoteEdit>& edits) {
  if (edits.empty()) throw OperationError::invalidInput("At least one edit is required");
  std::vector<EditOperation> checked;
  for (const NoteEdit& edit : edits) checked.push_back(checkedEdit(edit, checked.size()));
  return checked;
}

RemovalGate gate(const std::optional<std::vector<std::string>>& expected, bool force) {
  RemovalGate gate{.expected = {}, .force = force};
  if (expected) gate.expected.emplace(expected->begin(), expected->end());
  return gate;
}

}  // namespace

Note CreateNoteOp::execute(const Input& input, NoteStore& store) {
  if (input.title) {
    if (isBlank(*input.title)) throw OperationError::invalidInput("Title must not be empty");
    const auto content = withoutRepeatedTitle(input.content, *input.title);
    return input.ifNotExists ? store.createNoteIfAbsent(*input.title, content, input.tags)
                             : store.createNote(*input.title, content, input.tags);
  }
  if (!input.content || isBlank(*input.content))
    throw OperationError::invalidInput("Provide a title, content, or both");
  if (input.ifNotExists) throw OperationError::invalidInput("ifNotExists requires a title");
  return store.createNoteFromText(*input.content, input.tags);
}

WriteResponse AppendToNoteOp::execute(const Input& input, NoteStore& store) {
  const InsertPosition position = parsedPosition(input.position);
  const std::string id = OperationNoteResolver::resolveNoteID(input.id, input.title, store);
  return store.insertText(id, input.content, position);
}

void read(const JSONField& field, std::vector<NoteEdit>& edits) {
  for (const JSONField& element : elements(field)) {
    requireObject(element);
    NoteEdit& edit = edits.emplace_back();
    read(element.member("find"), edit.find);
    read(element.member("replace"), edit.replace);
    read(element.member("insertAfter"), edit.insertAfter);
    read(element.member("insertBefore"), edit.insertBefore);
    read(element.member("all"), edit.all);
    read(element.member("ignoreCase"), edit.ignoreCase);
    read(element.member("word"), edit.word);
  }
}

WriteResponse EditNoteOp::execute(const Input& input, NoteStore& store, bool force) {
  const std::vector<EditOperation> edits = checkedEdits(input.edits);
  const std::string id = OperationNoteResolver::resolveNoteID(input.id, input.title, store);
  const RemovalGate removals = gate(input.expectedRemovedAttachments, force);
  return edits.size() == 1 ? store.editNote(id, edits[0], removals)
                           : store.editNoteBatch(id, edits, removals);
}

WriteResponse OverwriteNoteOp::execute(const Input& input, NoteStore& store, bool force) {
  const std::string id = OperationNoteResolver::resolveNoteID(input.id, input.title, store);
  return store.overwriteNote(id, input.content, input.baseHash,
                             gate(input.expectedRemovedAttachments, force));
}

}  // namespace tavi
