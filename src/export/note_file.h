#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "domain/note_records.h"

namespace tavi::exporting {

/// The contents of a note's file: front matter with the metadata, then the text, which is empty for
/// a locked note.
std::string noteFile(const Note& note);

/// The note's id in the front matter of such a file; empty for any other file.
std::string noteIDOf(std::string_view file);

}  // namespace tavi::exporting
