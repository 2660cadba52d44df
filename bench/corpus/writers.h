#pragma once

#include <string>

#include "notes.h"

namespace corpus {

/// Calls `use` with each note of the corpus, or only with the huge one.
template <class Use>
void forEachNote(const Notes& notes, std::size_t hugeNoteBytes, Use use) {
  if (hugeNoteBytes > 0) return use(notes.hugeNote(hugeNoteBytes));
  for (std::size_t index = 0; index < notes.count(); ++index) use(notes.note(index));
}

/// One Markdown file a note, in folders of a thousand. Returns the sum of their bytes.
std::size_t writeMarkdown(const Notes& notes, std::size_t hugeNoteBytes, const std::string& folder);

/// Adds the notes to a database that the program has made, as a program would that knows only the
/// tables that are open to all.
void writeRows(const Notes& notes, std::size_t hugeNoteBytes, const std::string& database);

/// The file that the floors read. See the layout in the .cpp.
void writeFloorFile(const Notes& notes, std::size_t hugeNoteBytes, const std::string& path);

}  // namespace corpus
