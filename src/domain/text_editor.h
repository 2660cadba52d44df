#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "domain/note_records.h"

namespace tavi {

/// Applies edits to a text. An edit fails if its string is not found, or is found more than once
/// without `all`. Without `word`, canonically equivalent sequences match
/// (platform/text/string_search.h); with `word`, a regular expression requires word boundaries
/// around the literal string. An empty string is never found.
struct TextEditor {
  /// Returns the new text. All matches are found in the original text. Throws NoteStoreError
  /// (`stringNotFound` or `stringMatchesMultiple`, with `noteID`), or the error of the regular
  /// expression.
  static std::string applyEdit(const EditOperation& edit, std::string_view text,
                               std::string_view noteID);
  /// Applies each edit to the result of the previous one. Wraps the NoteStoreError of an edit in
  /// `batchEditFailed`.
  static std::string applyEdits(const std::vector<EditOperation>& edits, std::string_view text,
                                std::string_view noteID);
};

}  // namespace tavi
