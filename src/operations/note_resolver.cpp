#include "operations/note_resolver.h"

#include "operations/operation.h"
#include "platform/text/utf8.h"

namespace tavi {
namespace {

void refuseBlank(const std::string& text, const char* message) {
  if (platform::text::trimmingWhitespaceAndNewlines(text).empty())
    throw OperationError::invalidInput(message);
}

}  // namespace

OperationNoteResolver::Identification OperationNoteResolver::validateIdentification(
    const std::optional<std::string>& id, const std::optional<std::string>& title) {
  if (id && title) throw OperationError::invalidInput("Provide note ID or title, not both");
  if (!id && !title) throw OperationError::invalidInput("Note ID or title is required");
  if (id) {
    refuseBlank(*id, "Note ID must not be empty");
    return {Identification::Kind::id, *id};
  }
  refuseBlank(*title, "Note title must not be empty");
  return {Identification::Kind::title, *title};
}

std::string OperationNoteResolver::resolveNoteID(const std::optional<std::string>& id,
                                                 const std::optional<std::string>& title,
                                                 NoteStore& store) {
  const auto [kind, text] = validateIdentification(id, title);
  return kind == Identification::Kind::id ? text : store.noteWithTitle(text).metadata.id;
}

std::string OperationNoteResolver::resolveNoteIDEvenIfLocked(
    const std::optional<std::string>& id, const std::optional<std::string>& title,
    NoteStore& store) {
  const auto [kind, text] = validateIdentification(id, title);
  return kind == Identification::Kind::id ? text : store.metadataWithTitle(text).id;
}

}  // namespace tavi
