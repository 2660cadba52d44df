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

/// Writes one Markdown file per note, a thousand per folder. Returns their total size in bytes.
std::size_t writeMarkdown(const Notes& notes, std::size_t hugeNoteBytes, const std::string& folder);

/// Adds the notes to a database that the program has created, like a program that knows only the
/// public tables.
void writeRows(const Notes& notes, std::size_t hugeNoteBytes, const std::string& database);

/// Writes the file that the floors read. The .cpp has its layout.
void writeFloorFile(const Notes& notes, std::size_t hugeNoteBytes, const std::string& path);

}  // namespace corpus
