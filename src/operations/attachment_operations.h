#pragma once

#include <optional>
#include <string>
#include <vector>

#include "domain/note_store.h"
#include "operations/operation.h"

/// The operations on the files attached to a note. Each input identifies the note by exactly one of
/// `id` and `title`; all refuse locked notes.
namespace tavi {

/// Input of ListAttachmentsOp.
struct ListAttachmentsInput {
  std::optional<std::string> id, title;
};

/// Lists the attachments in the order of the note.
struct ListAttachmentsOp {
  using Input = ListAttachmentsInput;
  using Output = std::vector<AttachmentInfo>;
  static constexpr OperationMetadata metadata{
      .name = "list_attachments",
      .title = "List Attachments",
      .abstract = "List attachments on a note.",
      .description =
          "Return the attachments on a Tavi note as a list of filename and size (bytes).",
      .readOnlyHint = true,
      .idempotentHint = true};
  using Fields = NoteFields;
  static constexpr auto rows =
      table(row(Fields::id, &Input::id), row(Fields::title, &Input::title));
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of AddAttachmentOp.
struct AddAttachmentInput {
  std::optional<std::string> id, title;
  std::string filename;
  Base64Data data;
};

/// Attaches a file and links it at the end of the note. Refuses empty data.
struct AddAttachmentOp {
  using Input = AddAttachmentInput;
  using Output = WriteResponse;
  static constexpr OperationMetadata metadata{
      .name = "add_attachment",
      .title = "Add Attachment",
      .abstract = "Add an attachment to a note.",
      .description =
          "Attach a file to a Tavi note. The attachment data is supplied as base64-encoded bytes. "
          "A markdown link to the new attachment is appended to the note. If the note already has "
          "an attachment with the same filename, Tavi renames the new one (e.g. `photo.jpg` → "
          "`photo 2.jpg`); compare the post-state `attachments` list against your prior knowledge "
          "to learn the resolved name. Returns only the metadata fields that changed — use this to "
          "detect any unintended change (e.g. a tag accidentally dropped)."};
  struct Fields : NoteFields {
    static constexpr FieldDoc filename{"filename", "Filename of the attachment."};
    static constexpr FieldDoc data{"data", "Attachment bytes, base64-encoded."};
  };
  static constexpr auto rows =
      table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
            row(Fields::filename, &Input::filename), row(Fields::data, &Input::data));
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of DeleteAttachmentOp.
struct DeleteAttachmentInput {
  std::optional<std::string> id, title;
  std::string filename;
};

/// Deletes an attachment and its links in the note. Throws `attachmentNotFound`.
struct DeleteAttachmentOp {
  using Input = DeleteAttachmentInput;
  using Output = WriteResponse;
  static constexpr OperationMetadata metadata{
      .name = "delete_attachment",
      .title = "Delete Attachment",
      .abstract = "Delete an attachment from a note.",
      .description =
          "Remove an attachment from a Tavi note by filename. Destructive — the attachment bytes "
          "are deleted. Returns only the metadata fields that changed — use this to detect any "
          "unintended change (e.g. a tag accidentally dropped).",
      .destructiveHint = true,
      .idempotentHint = true};
  struct Fields : NoteFields {
    static constexpr FieldDoc filename{"filename", "Filename of the attachment."};
  };
  static constexpr auto rows = table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
                                     row(Fields::filename, &Input::filename));
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of ReadAttachmentOp.
struct ReadAttachmentInput {
  std::optional<std::string> id, title;
  std::string filename;
};

/// Reads an attachment. Throws `attachmentNotFound`.
struct ReadAttachmentOp {
  using Input = ReadAttachmentInput;
  using Output = std::string;  ///< the bytes, not encoded
  static constexpr OperationMetadata metadata{
      .name = "read_attachment",
      .title = "Read Attachment",
      .abstract = "Return the bytes of an attachment.",
      .description =
          "Return the raw bytes of an attachment from a Tavi note. The bytes are base64-encoded "
          "for MCP transport.",
      .readOnlyHint = true,
      .idempotentHint = true};
  using Fields = DeleteAttachmentOp::Fields;
  static constexpr auto rows = table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
                                     row(Fields::filename, &Input::filename));
  static Output execute(const Input& input, NoteStore& store);
};

}  // namespace tavi
