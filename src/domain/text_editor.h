#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "domain/note_records.h"

namespace tavi {

/// Applies edits to a text, and refuses what is not exact: a text that is not found, or one that
/// is found more than once where not all were asked for. Without `word`, canonically equivalent
/// sequences match each other (platform/text/string_search.h); with it, a regular expression asks
/// for word boundaries around the text as it is written. An empty text to find is never found.
struct TextEditor {
  /// The new text. Throws NoteStoreError (`stringNotFound`, `stringMatchesMultiple`) with
  /// `noteID`, or the regular-expression error of a word search. All matches are those of the text
  /// as it came in.
  static std::string applyEdit(const EditOperation& edit, std::string_view text,
                               std::string_view noteID);
  /// Each edit on the result of the one before; a NoteStoreError of one comes wrapped in
  /// `batchEditFailed`.
  static std::string applyEdits(const std::vector<EditOperation>& edits, std::string_view text,
                                std::string_view noteID);
};

}  // namespace tavi
