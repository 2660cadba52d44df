#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "domain/note_records.h"
#include "platform/model/lists/note_view.h"
#include "platform/model/objects/note.h"

namespace tavi {

/// Converts a note of the model; all reads and write responses use it. Hash, counts and attachments
/// of a locked note are empty. Overwrites `metadata` and reuses its memory, which keeps long lists
/// fast.
void convert(const tavimodel::NoteView& note, NoteMetadata& metadata);

/// Converts an object of the model, without reading the text of a locked note.
NoteMetadata metadataOf(tavimodel::KVNote& note);

/// The note with its text, which is empty if the note is locked.
Note noteOf(tavimodel::KVNote& note);

/// Sorts by code points after normalization (Unicode UAX #15).
std::vector<std::string> sortedByCodePoints(std::vector<std::string> texts);

/// The hashtags of the tag names, ascending. Names that no hashtag can express are left out.
std::vector<std::string> sortedHashtags(std::span<const std::string_view> names);

}  // namespace tavi
