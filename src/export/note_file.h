#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "domain/note_records.h"

namespace tavi::exporting {

/// The note as a file: front matter that says everything but the text, and the text. Of a locked
/// note there is no text.
std::string noteFile(const Note& note);

/// The id that the front matter of such a file says; empty for any other file.
std::string noteIDOf(std::string_view file);

}  // namespace tavi::exporting
