#include "operations/attachment_operations.h"

#include "operations/note_resolver.h"

namespace tavi {

std::vector<AttachmentInfo> ListAttachmentsOp::execute(const Input& input, NoteStore& store) {
  return store.listAttachments(OperationNoteResolver::resolveNoteID(input.id, input.title, store));
}

WriteResponse AddAttachmentOp::execute(const Input& input, NoteStore& store) {
  if (input.data.bytes.empty()) throw OperationError::invalidInput("Attachment data is empty");
  const std::string id = OperationNoteResolver::resolveNoteID(input.id, input.title, store);
  return store.addAttachment(id, input.data.bytes, input.filename);
}

WriteResponse DeleteAttachmentOp::execute(const Input& input, NoteStore& store) {
  const std::string id = OperationNoteResolver::resolveNoteID(input.id, input.title, store);
  return store.deleteAttachment(id, input.filename);
}

std::string ReadAttachmentOp::execute(const Input& input, NoteStore& store) {
  const std::string id = OperationNoteResolver::resolveNoteID(input.id, input.title, store);
  return store.readAttachment(id, input.filename);
}

}  // namespace tavi
