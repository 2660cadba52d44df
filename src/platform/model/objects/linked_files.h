#pragma once

#include <vector>

#include "platform/markdown/ast.h"
#include "platform/model/objects/note_file.h"

namespace tavimodel {

/// What to do with a file that the old text links to and the new one does not.
enum class UnlinkedFiles {
  keep,    ///< keep it in the note's list
  remove,  ///< remove it from the note and delete its bytes
};

/// Returns a note's files after a change of its text, ordered by their first link in the new text;
/// files without a link come last, in their old order. Sets `position`, from 0.
///
/// A link refers to the files of exactly its name or, if the note has none, to those of a
/// canonically equivalent name. Removes files that `before` links to and `after` does not, and
/// keeps those that neither links to. So an empty `before` keeps all files.
std::vector<KVNoteFile> filesAfterChange(std::vector<KVNoteFile> files,
                                         const std::vector<zephyrdown::FileLink>& before,
                                         const std::vector<zephyrdown::FileLink>& after);

}  // namespace tavimodel
