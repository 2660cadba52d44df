#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "domain/instant.h"

/// The plain records that pass between the store, the operations and the two faces. Each is a
/// value. All texts are UTF-8.
namespace tavi {

enum class NoteLocation { notes, trash, archive };
std::string_view rawText(NoteLocation location);  ///< "notes", "trash", "archive"
std::optional<NoteLocation> noteLocation(std::string_view rawText);

/// Everything known of a note but its text. The fields stand in their encoding order.
struct NoteMetadata {
  std::string id;
  std::string title;
  bool locked = false;             ///< encrypted: the text cannot be read through this program
  std::string contentHash;         ///< ContentHash of the text; empty when locked
  std::int64_t contentLength = 0;  ///< of the text, in UTF-8 bytes; 0 when locked
  Instant created;
  Instant modified;
  std::vector<std::string> pins;  ///< "global" first, then hashtags, ascending
  NoteLocation location = NoteLocation::notes;
  std::int64_t todos = 0;                ///< open to-do items
  std::int64_t done = 0;                 ///< finished to-do items
  std::vector<std::string> tags;         ///< canonical names, ascending
  std::vector<std::string> attachments;  ///< file names, in note order; empty when locked
};

/// A note with its text, the raw Markdown.
struct Note {
  NoteMetadata metadata;
  std::string content;
};

struct AttachmentInfo {
  std::string filename;
  std::int64_t size = 0;  ///< bytes
};

/// One occurrence in a note's text.
struct SearchMatch {
  std::int64_t byteOffset = 0;  ///< of its first byte, from the text's start
  std::string snippet;          ///< match and context on one line; \\, \n and \t escaped
};

struct SearchResult {
  NoteMetadata metadata;
  std::int64_t matchCount = 0;
};

struct SearchResultWithContent {
  Note note;
  std::int64_t matchCount = 0;
};

struct EditAction {
  enum class Kind { replace, insertAfter, insertBefore };
  Kind kind = Kind::replace;
  std::string text;
};

/// One edit: what to find, and what to do at the match.
struct EditOperation {
  std::string find;
  EditAction action;
  bool all = false;
  bool ignoreCase = false;
  bool word = false;
};

enum class InsertPosition { beginning, end };
std::string_view rawText(InsertPosition position);
std::optional<InsertPosition> insertPosition(std::string_view rawText);

}  // namespace tavi
