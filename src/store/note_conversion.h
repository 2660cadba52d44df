#pragma once

#include <string>
#include <vector>

#include "domain/note_records.h"
#include "platform/model/note.h"

namespace tavi {

/// The one conversion of a note of the model, which every read and every write response goes
/// through. The text of a locked note is never read: hash and counts are empty.
NoteMetadata metadataOf(tavimodel::KVNote& note);

/// The note with its text, or with an empty one when it is locked.
Note noteOf(tavimodel::KVNote& note);

/// Sorts by the code points of the normalised texts.
std::vector<std::string> sortedByCodePoints(std::vector<std::string> texts);

/// The hashtag form of each name, ascending; names without one are left out.
std::vector<std::string> sortedHashtags(const std::vector<std::string>& names);

}  // namespace tavi
