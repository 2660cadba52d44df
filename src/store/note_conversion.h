#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "domain/note_records.h"
#include "platform/model/lists/note_view.h"
#include "platform/model/objects/note.h"

namespace tavi {

/// The one conversion of a note of the model, which every read and every write response goes
/// through. Of a locked note, hash, counts and attachments are empty.
/// What `metadata` held before goes; its memory is used again, which is what a long list lives on.
void convert(const tavimodel::NoteView& note, NoteMetadata& metadata);

/// The same of an object of the model; the text of a locked note is not read.
NoteMetadata metadataOf(tavimodel::KVNote& note);

/// The note with its text, or with an empty one when it is locked.
Note noteOf(tavimodel::KVNote& note);

/// Sorts by the code points of the normalised texts.
std::vector<std::string> sortedByCodePoints(std::vector<std::string> texts);

/// The hashtag form of each name, ascending; names without one are left out.
std::vector<std::string> sortedHashtags(std::span<const std::string_view> names);

}  // namespace tavi
