#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "domain/instant.h"

/// The plain values that pass between the store, the operations, the command line and the MCP
/// server. All texts are UTF-8.
namespace tavi {

/// Where a note is: among the active notes, in the trash or in the archive.
enum class NoteLocation { notes, trash, archive };
std::string_view rawText(NoteLocation location);  ///< "notes", "trash", "archive"
std::optional<NoteLocation> noteLocation(std::string_view rawText);  ///< absent for other texts

/// All properties of a note except its text. The order of the fields is that of the output.
struct NoteMetadata {
  std::string id;  ///< the unique identifier
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

/// A file that is attached to a note.
struct AttachmentInfo {
  std::string filename;
  std::int64_t size = 0;  ///< bytes
};

/// One occurrence of a string in a note's text.
struct SearchMatch {
  std::int64_t byteOffset = 0;  ///< of the first byte of the match, in bytes from the text's start
  std::string snippet;          ///< match and context on one line; \\, \n and \t escaped
};

/// A note that a search found.
struct SearchResult {
  NoteMetadata metadata;
  std::int64_t matchCount = 0;  ///< occurrences of the search terms in the text
};

/// The same with the note's text.
struct SearchResultWithContent {
  Note note;
  std::int64_t matchCount = 0;  ///< occurrences of the search terms in the text
};

/// What an edit does at a match.
struct EditAction {
  enum class Kind { replace, insertAfter, insertBefore };
  Kind kind = Kind::replace;
  std::string text;  ///< the replacement or the inserted text
};

/// One edit: what to find, and what to do at the match. TextEditor applies it.
struct EditOperation {
  std::string find;
  EditAction action;
  bool all = false;         ///< edit every match; otherwise there must be exactly one
  bool ignoreCase = false;  ///< Unicode full case folding
  bool word = false;        ///< match whole words only
};

/// Where text is inserted in a note: after the title and tags at the top, or before tags and
/// footnotes at the end.
enum class InsertPosition { beginning, end };
std::string_view rawText(InsertPosition position);                       ///< "beginning", "end"
std::optional<InsertPosition> insertPosition(std::string_view rawText);  ///< absent: other texts

}  // namespace tavi
