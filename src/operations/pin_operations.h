#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "domain/note_store.h"
#include "operations/operation.h"

/// The operations on pins. A pin puts a note at the top of the list of all notes ("global") or of
/// the list of one tag; these are its pin contexts. All operations accept locked notes.
namespace tavi {

/// A pin context for display: "global" or a hashtag. `pin`: "global" or empty, a hashtag, or the
/// canonical name of a tag.
std::string displayedPin(std::string_view pin);

/// Input of ListPinsOp.
struct ListPinsInput {
  std::optional<std::string> id, title;  ///< both absent: all contexts in use
};

/// Lists the pin contexts of a note, or all that are in use.
struct ListPinsOp {
  using Input = ListPinsInput;
  using Output = std::vector<std::string>;  ///< as displayedPin shows them
  static constexpr OperationMetadata metadata{
      .name = "list_pins",
      .title = "List Pins",
      .abstract = "List pin contexts on a note, or every pin context in use.",
      .description =
          "When id or title is provided, returns the pin contexts on that note. When neither is "
          "provided, returns every pin context in use across the database. \"global\" denotes the "
          "All Notes pin; other entries are tag names where notes are pinned within that tag.",
      .readOnlyHint = true,
      .idempotentHint = true};
  struct Fields {
    static constexpr FieldDoc id{"id",
                                 "Note ID. When omitted (and title also omitted), every pin "
                                 "context in use across the database is returned."};
    static constexpr FieldDoc title{
        "title",
        "Case-insensitive note title. When omitted (and id also omitted), every pin context in use "
        "across the database is returned."};
  };
  static constexpr auto rows =
      table(row(Fields::id, &Input::id), row(Fields::title, &Input::title));
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of AddPinsOp.
struct AddPinsInput {
  std::optional<std::string> id, title;
  std::vector<std::string> targets;  ///< "global" or tags; not empty
};

/// Pins a note. Throws `tagsNotFound`, before any write, unless all target tags exist. Each target
/// is a separate write; the output is the difference over all of them.
struct AddPinsOp {
  using Input = AddPinsInput;
  using Output = WriteResponse;
  static constexpr OperationMetadata metadata{
      .name = "add_pins",
      .title = "Add Pins",
      .abstract = "Pin a note globally or within tags.",
      .description =
          "Add one or more pins to a Tavi note. Each target is either \"global\" or a tag name. "
          "Already-applied pins are silently skipped. Atomic: if any tag does not exist, no pins "
          "are applied. Returns only the metadata fields that changed — use this to detect any "
          "unintended change (e.g. a tag accidentally dropped).",
      .idempotentHint = true};
  struct Fields : NoteFields {
    static constexpr FieldDoc targets{
        "targets",
        "Pin targets: \"global\" for the All Notes pin and/or tag names (surrounding # and "
        "whitespace stripped). Atomic — all tags must exist or no pins are applied."};
  };
  static constexpr auto rows = table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
                                     requiredRow(Fields::targets, &Input::targets));
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of RemovePinsOp.
struct RemovePinsInput {
  std::optional<std::string> id, title;
  std::vector<std::string> targets;  ///< "global" or tags; not empty
};

/// Unpins a note. Writes and errors are those of AddPinsOp.
struct RemovePinsOp {
  using Input = RemovePinsInput;
  using Output = WriteResponse;
  static constexpr OperationMetadata metadata{
      .name = "remove_pins",
      .title = "Remove Pins",
      .abstract = "Unpin a note globally or within tags.",
      .description =
          "Remove one or more pins from a Tavi note. Each target is either \"global\" or a tag "
          "name. Atomic: if any tag does not exist, no pins are removed. Returns only the metadata "
          "fields that changed — use this to detect any unintended change (e.g. a tag accidentally "
          "dropped).",
      .destructiveHint = true,
      .idempotentHint = true};
  struct Fields : NoteFields {
    static constexpr FieldDoc targets{
        "targets",
        "Pin targets to remove: \"global\" and/or tag names (surrounding # and whitespace "
        "stripped). Atomic — all tags must exist or no pins are removed."};
  };
  static constexpr auto rows = table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
                                     requiredRow(Fields::targets, &Input::targets));
  static Output execute(const Input& input, NoteStore& store);
};

}  // namespace tavi
