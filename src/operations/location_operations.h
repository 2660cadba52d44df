#pragma once

#include <functional>
#include <optional>
#include <string>

#include "domain/note_store.h"
#include "operations/operation.h"

/// The operations that move a note between the three locations, and the one that shows it in the
/// application. Each input identifies the note by exactly one of `id` and `title`; all four accept
/// locked notes.
namespace tavi {

/// Input of the operations that move a note.
struct MoveNoteInput {
  std::optional<std::string> id, title;
};

/// The common part of the operations that move a note.
struct MoveNoteOp {
  using Input = MoveNoteInput;
  using Output = WriteResponse;
  using Fields = NoteFields;
  static constexpr auto rows =
      table(row(Fields::id, &Input::id), row(Fields::title, &Input::title));
};

/// Moves a note to the trash.
struct TrashNoteOp : MoveNoteOp {
  static constexpr OperationMetadata metadata{
      .name = "trash_note",
      .title = "Trash Note",
      .abstract = "Move a note to the trash (soft-delete).",
      .description =
          "Soft-delete a Tavi note by moving it to the Trash. The note can be restored with "
          "restore_note. Returns only the metadata fields that changed — use this to detect any "
          "unintended change (e.g. a tag accidentally dropped).",
      .destructiveHint = true,
      .idempotentHint = true};
  static Output execute(const Input& input, NoteStore& store);
};

/// Moves a note to the archive.
struct ArchiveNoteOp : MoveNoteOp {
  static constexpr OperationMetadata metadata{
      .name = "archive_note",
      .title = "Archive Note",
      .abstract = "Move a note to the archive.",
      .description =
          "Move a Tavi note to the archive. The note is hidden from the active notes list but not "
          "deleted. Returns only the metadata fields that changed — use this to detect any "
          "unintended change (e.g. a tag accidentally dropped).",
      .destructiveHint = true,
      .idempotentHint = true};
  static Output execute(const Input& input, NoteStore& store);
};

/// Moves a note from the trash or the archive back to the active notes.
struct RestoreNoteOp : MoveNoteOp {
  static constexpr OperationMetadata metadata{
      .name = "restore_note",
      .title = "Restore Note",
      .abstract = "Move a note back to the active notes list.",
      .description =
          "Restore a Tavi note from the Trash or Archive back to the active notes list. Returns "
          "only the metadata fields that changed — use this to detect any unintended change (e.g. "
          "a tag accidentally dropped).",
      .idempotentHint = true};
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of OpenNoteOp.
struct OpenNoteInput {
  std::optional<std::string> id, title, header;
  bool edit = false;
  bool newWindow = false;
  bool floating = false;
};

/// Asks the application to show a note.
struct OpenNoteOp {
  using Input = OpenNoteInput;
  using Output = void;
  static constexpr OperationMetadata metadata{
      .name = "open_note",
      .title = "Open Note",
      .abstract = "Open a note in the Tavi app.",
      .description =
          "Open a Tavi note in the Tavi app via the x-callback-url scheme. Identify the note by id "
          "or title. Optionally scroll to a header, drop the cursor into the editor, or open in a "
          "new or floating window.",
      .readOnlyHint = true,
      .idempotentHint = true};
  struct Fields : NoteFields {
    static constexpr FieldDoc header{"header", "Scroll to the named header inside the note."};
    static constexpr FieldDoc edit{"edit", "Place the cursor in the editor ready for typing."};
    static constexpr FieldDoc newWindow{"newWindow", "Open the note in a new window."};
    static constexpr FieldDoc floating{"float",
                                       "Open the note in a floating panel that stays on top."};
  };
  static constexpr auto rows =
      table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
            row(Fields::header, &Input::header), row(Fields::edit, &Input::edit),
            row(Fields::newWindow, &Input::newWindow), row(Fields::floating, &Input::floating));

  /// Opens a URL with the desktop's program for it. False if that fails.
  using URLOpener = std::function<bool(const std::string& url)>;

  /// Does not wait for the application, and does not check that a note of the given id exists.
  /// Throws `storeUnavailable` if the URL cannot be opened.
  static Output execute(const Input& input, NoteStore& store);
  static Output execute(const Input& input, NoteStore& store, const URLOpener& open);
};

}  // namespace tavi
