#pragma once

#include <optional>
#include <string>
#include <vector>

#include "domain/note_store.h"
#include "operations/operation.h"

/// The operations that create a note or change its text. An `id`/`title` pair identifies the note:
/// exactly one of the two must be given. Locked notes are refused.
namespace tavi {

/// Input of CreateNoteOp: a title, content, or both.
struct CreateNoteInput {
  std::optional<std::string> title, content;
  std::vector<std::string> tags;
  bool ifNotExists = false;  ///< return the active note of this title if there is one
};

/// Creates a note.
struct CreateNoteOp {
  using Input = CreateNoteInput;
  using Output = Note;
  static constexpr OperationMetadata metadata{
      .name = "create_note",
      .title = "Create Note",
      .abstract = "Create a new note.",
      .description =
          "Create a new Tavi note with an optional title, body content, and tags. When a title is "
          "provided with ifNotExists=true, returns the existing note if one with that title "
          "already exists. Returns the note's full metadata (id, title, contentHash, dates, tags, "
          "attachments, etc.) plus the canonical body content as Tavi stored it. The fields are "
          "flat at the top level (not nested under metadata) — same field names as NoteMetadata "
          "plus content."};
  struct Fields {
    static constexpr FieldDoc title{"title",
                                    "Note title. When omitted, Tavi derives it from the first # "
                                    "heading or first line of the content."};
    static constexpr FieldDoc content{"content", "Note body content."};
    static constexpr FieldDoc tags{
        "tags",
        "Tag names. Surrounding # and whitespace are stripped. Nested tags use slashes (e.g. "
        "work/draft); spaces are allowed in tag names. Tags already referenced inline in `content` "
        "are not appended to the tag-line — to force a tag at the top or bottom of the note, omit "
        "it from `content`."};
    static constexpr FieldDoc ifNotExists{"ifNotExists",
                                          "When true, return the existing note if one with this "
                                          "title already exists. Requires title."};
  };
  static constexpr auto rows =
      table(row(Fields::title, &Input::title), row(Fields::content, &Input::content),
            row(Fields::tags, &Input::tags), row(Fields::ifNotExists, &Input::ifNotExists));
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of AppendToNoteOp.
struct AppendToNoteInput {
  std::optional<std::string> id, title;
  std::string content;
  std::optional<std::string> position;  ///< "beginning" or "end"; absent: "end"
};

/// Inserts text at the beginning or the end of a note, see InsertPosition.
struct AppendToNoteOp {
  using Input = AppendToNoteInput;
  using Output = WriteResponse;
  static constexpr OperationMetadata metadata{
      .name = "append_to_note",
      .title = "Append To Note",
      .abstract = "Append or prepend content to a note.",
      .description =
          "Add content to an existing Tavi note. By default content is inserted at the end, before "
          "any bottom-placed tags or footnote definitions; pass position=beginning to insert after "
          "the title and any top-placed tags. Returns only the metadata fields that changed — use "
          "this to detect any unintended change (e.g. a tag accidentally dropped)."};
  struct Fields : NoteFields {
    static constexpr FieldDoc content{"content", "Content to add to the note."};
    static constexpr FieldDoc position{
        "position",
        "Where to insert: \"beginning\" (after the title and any top-placed tags) or \"end\" "
        "(before any bottom-placed tags and footnote definitions). Tavi places tags at the top or "
        "bottom of a note depending on a user setting. Defaults to \"end\"."};
  };
  static constexpr auto rows =
      table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
            row(Fields::content, &Input::content), row(Fields::position, &Input::position));
  static Output execute(const Input& input, NoteStore& store);
};

/// One edit of an input: exactly one of the three actions must be given. See EditOperation.
struct NoteEdit {
  std::string find;
  std::optional<std::string> replace, insertAfter, insertBefore;
  bool all = false;
  bool ignoreCase = false;
  bool word = false;
};
/// Reads an array of objects. Throws OperationError.
void read(const JSONField& field, std::vector<NoteEdit>& edits);

/// Input of EditNoteOp.
struct EditNoteInput {
  std::optional<std::string> id, title;
  std::vector<NoteEdit> edits;                                         ///< not empty
  std::optional<std::vector<std::string>> expectedRemovedAttachments;  ///< see RemovalGate
};

/// Applies edits to a note, all or none. The errors are those of TextEditor.
struct EditNoteOp {
  using Input = EditNoteInput;
  using Output = WriteResponse;
  static constexpr OperationMetadata metadata{
      .name = "edit_note",
      .title = "Edit Note",
      .abstract = "Edit a note by finding exact string and replacing or inserting around it.",
      .description =
          "Find an exact string in a Tavi note and either replace it, insert text after it, or "
          "insert text before it. Multiple edits in one call are applied atomically — if any find "
          "string is not matched, no changes are committed. Returns only the metadata fields that "
          "changed — use this to detect any unintended change (e.g. a tag accidentally dropped).",
      .destructiveHint = true};
  struct Fields : NoteFields {
    static constexpr FieldDoc edits{
        "edits",
        "List of edits to apply atomically. Each edit has 'find' (exact text to match) and exactly "
        "one of 'replace' (substitute the match), 'insertAfter' (text inserted immediately after "
        "the match), or 'insertBefore' (text inserted immediately before the match). Optional "
        "per-edit flags: all (apply to every match), ignoreCase (case-insensitive), word "
        "(whole-word match using Unicode word boundaries)."};
    static constexpr FieldDoc expectedRemovedAttachments{
        "expectedRemovedAttachments",
        "Filenames of attachments the edit is expected to remove. The write is rejected if Tavi's "
        "reconciler removes a different set after applying the edits — even an empty omission "
        "rejects any undeclared removal. Use this when an edit deliberately drops an attachment "
        "reference; otherwise prefer delete_attachment, which is the dedicated path for byte "
        "deletion."};
  };
  static constexpr auto rows =
      table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
            row(Fields::edits, &Input::edits),
            row(Fields::expectedRemovedAttachments, &Input::expectedRemovedAttachments));
  /// `force`: see RemovalGate.
  static Output execute(const Input& input, NoteStore& store, bool force = false);
};

/// Input of OverwriteNoteOp.
struct OverwriteNoteInput {
  std::optional<std::string> id, title;
  std::string content;
  std::optional<std::string> baseHash;  ///< of the text that was read; absent: do not check
  std::optional<std::vector<std::string>> expectedRemovedAttachments;  ///< see RemovalGate
};

/// Replaces a note's text. Throws `hashMismatch` if the text changed since it was read.
struct OverwriteNoteOp {
  using Input = OverwriteNoteInput;
  using Output = WriteResponse;
  static constexpr OperationMetadata metadata{
      .name = "overwrite_note",
      .title = "Overwrite Note",
      .abstract = "Overwrite a note's entire content.",
      .description =
          "Replace the entire content of a Tavi note. Destructive — the previous content is lost. "
          "MCP callers must pass baseHash from a prior read; the write is rejected if the note "
          "changed in between (optimistic concurrency). Attachment removals are gated: declare "
          "them via expectedRemovedAttachments, or call delete_attachment separately. Tag changes "
          "are not gated — adding a dropped tag back is cheap (use add_tags). Returns only the "
          "metadata fields that changed — use this to detect any unintended change (e.g. a tag "
          "accidentally dropped).",
      .destructiveHint = true,
      .idempotentHint = true};
  struct Fields : NoteFields {
    static constexpr FieldDoc content{
        "content",
        "Replacement content for the note. Tavi derives the title from the first heading and tags "
        "from #hashtags; attachment references must be preserved or the attachments are removed."};
    static constexpr FieldDoc baseHash{
        "baseHash",
        "Content hash from a prior read. The write is rejected if the note changed since the hash "
        "was obtained — optimistic concurrency. Required when calling via MCP. CLI callers may "
        "omit it; without --base the CLI write is unconditional (no concurrency check)."};
    static constexpr FieldDoc expectedRemovedAttachments{
        "expectedRemovedAttachments",
        "Filenames of attachments the overwrite is expected to drop. The write is rejected if "
        "Tavi's reconciler removes a different set. Use this when an overwrite deliberately drops "
        "an attachment reference; otherwise prefer delete_attachment, which is the dedicated path "
        "for byte deletion."};
  };
  static constexpr auto rows =
      table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
            row(Fields::content, &Input::content), requiredRow(Fields::baseHash, &Input::baseHash),
            row(Fields::expectedRemovedAttachments, &Input::expectedRemovedAttachments));
  /// `force`: see RemovalGate.
  static Output execute(const Input& input, NoteStore& store, bool force = false);
};

}  // namespace tavi
