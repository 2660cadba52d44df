#pragma once

#include <vector>

#include "platform/markdown/ast.h"
#include "platform/model/objects/note_file.h"

namespace tavimodel {

/// What becomes of a file that the old text links and the new one does not.
enum class UnlinkedFiles {
  keep,    ///< it stays in the note's list
  remove,  ///< it leaves the note, and its bytes are deleted
};

/// A note's files after a change of its text, in the order in which the new text first links them;
/// those that it does not link come last, in the order that they had. `position` counts from 0.
///
/// A link names the files of exactly its name, or, where the note has none, those of a canonically
/// equivalent one. A file that `before` links and `after` does not is left out; one that neither
/// links stays. So an empty `before` keeps all files.
std::vector<KVNoteFile> filesAfterChange(std::vector<KVNoteFile> files,
                                         const std::vector<zephyrdown::FileLink>& before,
                                         const std::vector<zephyrdown::FileLink>& after);

}  // namespace tavimodel
