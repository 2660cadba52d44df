#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "domain/note_store.h"
#include "operations/operation.h"

/// The operations on tags. Tags may be given in any form, such as "#work/draft"; checkedTagName
/// turns them into canonical names.
namespace tavi {

/// Input of ListTagsOp.
struct ListTagsInput {
  std::optional<std::string> id, title;  ///< both absent: all tags
};

/// Lists the tags of a note, or all tags. Accepts locked notes.
struct ListTagsOp {
  using Input = ListTagsInput;
  using Output = std::vector<std::string>;  ///< canonical names, ascending
  static constexpr OperationMetadata metadata{
      .name = "list_tags",
      .title = "List Tags",
      .abstract = "List tags globally or for a specific note.",
      .description =
          "Return tags from Tavi. With no note identifier, returns every tag in the database. With "
          "id or title, returns the tags applied to that note.",
      .readOnlyHint = true,
      .idempotentHint = true};
  struct Fields {
    static constexpr FieldDoc id{
        "id", "Note ID. When omitted, all tags across the database are returned."};
    static constexpr FieldDoc title{
        "title",
        "Case-insensitive note title. When omitted, all tags across the database are returned."};
  };
  static constexpr auto rows =
      table(row(Fields::id, &Input::id), row(Fields::title, &Input::title));
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of AddTagsOp: exactly one of `id` and `title`.
struct AddTagsInput {
  std::optional<std::string> id, title;
  std::vector<std::string> tags;  ///< not empty
};

/// Writes tags into a note's text, at the place that the application's preferences say.
struct AddTagsOp {
  using Input = AddTagsInput;
  using Output = WriteResponse;
  static constexpr OperationMetadata metadata{
      .name = "add_tags",
      .title = "Add Tags",
      .abstract = "Add tags to a note.",
      .description =
          "Add one or more tags to a Tavi note. Already-present tags are silently skipped. Tags "
          "are inserted at the position configured in Tavi's settings and the note's modification "
          "date is preserved. Returns only the metadata fields that changed — use this to detect "
          "any unintended change (e.g. a tag accidentally dropped).",
      .idempotentHint = true};
  struct Fields : NoteFields {
    static constexpr FieldDoc tags{"tags",
                                   "Tag names to add. Surrounding # and whitespace are stripped. "
                                   "Nested tags use slashes (e.g. work/draft); spaces are allowed "
                                   "in tag names. Already-present tags are silently skipped."};
  };
  static constexpr auto rows = table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
                                     requiredRow(Fields::tags, &Input::tags));
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of RemoveTagsOp: exactly one of `id` and `title`.
struct RemoveTagsInput {
  std::optional<std::string> id, title;
  std::vector<std::string> tags;  ///< not empty
};

/// Removes tags from a note's text.
struct RemoveTagsOp {
  using Input = RemoveTagsInput;
  using Output = WriteResponse;
  static constexpr OperationMetadata metadata{
      .name = "remove_tags",
      .title = "Remove Tags",
      .abstract = "Remove tags from a note.",
      .description =
          "Remove one or more tags from a Tavi note. Tags not present are silently skipped. The "
          "note's modification date is preserved. Returns only the metadata fields that changed — "
          "use this to detect any unintended change (e.g. a tag accidentally dropped).",
      .destructiveHint = true,
      .idempotentHint = true};
  struct Fields : NoteFields {
    static constexpr FieldDoc tags{"tags",
                                   "Tag names to remove. Surrounding # and whitespace are "
                                   "stripped. Tags not present are silently skipped."};
  };
  static constexpr auto rows = table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
                                     requiredRow(Fields::tags, &Input::tags));
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of RenameTagOp.
struct RenameTagInput {
  std::string oldName, newName;
  bool force = false;
};

/// Renames a tag and its descendants in all notes.
struct RenameTagOp {
  using Input = RenameTagInput;
  using Output = std::int64_t;  ///< the number of notes with the old tag or a descendant
  static constexpr OperationMetadata metadata{
      .name = "rename_tag",
      .title = "Rename Tag",
      .abstract = "Rename a tag across all notes.",
      .description =
          "Rename a Tavi tag globally. Also renames nested child tags (e.g. old/child becomes "
          "new/child). Silently succeeds when the old tag does not exist. Refuses when the new "
          "name already exists (use force=true to merge anyway). Note modification dates are "
          "preserved. Returns `{ notesUpdated: Int }` — the number of notes whose tag relation "
          "actually changed.",
      .destructiveHint = true,
      .idempotentHint = true};
  struct Fields {
    static constexpr FieldDoc oldName{
        "old", "Current tag name. Surrounding # and whitespace are stripped."};
    static constexpr FieldDoc newName{"new",
                                      "New tag name. Surrounding # and whitespace are stripped."};
    static constexpr FieldDoc force{
        "force",
        "Proceed with the merge when the new name already exists. By default the rename is "
        "rejected since the merge cannot be undone."};
  };
  static constexpr auto rows =
      table(row(Fields::oldName, &Input::oldName), row(Fields::newName, &Input::newName),
            row(Fields::force, &Input::force));
  /// If the new tag exists, a rename merges the two, which cannot be undone. Without `force` it
  /// throws `renameTargetExists` instead.
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of DeleteTagOp.
struct DeleteTagInput {
  std::string tag;
};

/// Removes a tag, but not its descendants, from all notes.
struct DeleteTagOp {
  using Input = DeleteTagInput;
  using Output = std::int64_t;  ///< the number of notes that had the tag
  static constexpr OperationMetadata metadata{
      .name = "delete_tag",
      .title = "Delete Tag",
      .abstract = "Delete a tag from all notes.",
      .description =
          "Delete a Tavi tag from every note that has it. Does not affect nested child tags. "
          "Silently succeeds when the tag does not exist; note modification dates are preserved. "
          "Returns `{ notesUpdated: Int }` — the number of notes whose tag relation actually "
          "changed.",
      .destructiveHint = true,
      .idempotentHint = true};
  struct Fields {
    static constexpr FieldDoc tag{
        "tag", "Tag name to delete from all notes. Surrounding # and whitespace are stripped."};
  };
  static constexpr auto rows = table(row(Fields::tag, &Input::tag));
  static Output execute(const Input& input, NoteStore& store);
};

}  // namespace tavi
