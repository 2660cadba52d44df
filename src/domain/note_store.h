#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "domain/note_records.h"
#include "domain/record_list.h"
#include "domain/sort_criteria.h"
#include "domain/write_response.h"

namespace tavi {

/// Sorting, paging and filters of a list or a search.
struct ListRequest {
  SortCriteria sort;
  std::int64_t limit = INT64_MAX;        ///< rows; greater than 0
  std::int64_t offset = 0;               ///< rows to skip; not negative
  std::optional<NoteLocation> location;  ///< absent: every location
  /// The canonical name of a tag: only notes with this tag or a descendant of it. Absent: no
  /// filter. A list with this filter sorts titles like a search.
  std::optional<std::string> tag = std::nullopt;
  /// Whether the caller needs hash, length, to-dos, pins and attachments, which cost extra reads.
  bool detailed = true;
};

/// Guards attachments against unintended removal: a write must declare those that it removes. If
/// the declaration differs from what it would remove, it is refused
/// (`attachmentRemovalGateFailed`).
struct RemovalGate {
  std::optional<std::set<std::string>> expected;  ///< file names; absent means none
  bool force = false;                             ///< writes without the check
};

/// The storage interface. Its functions throw NoteStoreError; exceptions of the platform
/// (std::exception) pass through unchanged.
///
/// Titles match case-insensitively and among active notes only; notes in the trash and the archive
/// are identified by id. Functions that read or change the text of a locked note throw
/// `noteIsLocked`; metadata, lists, searches, moves and pins work on it, with empty content. A
/// write is atomic, and durable when it returns.
class NoteStore {
 public:
  virtual ~NoteStore() = default;

  virtual Note noteWithID(const std::string& id) = 0;
  virtual Note noteWithTitle(const std::string& title) = 0;
  virtual NoteMetadata metadataWithID(const std::string& id) = 0;
  virtual NoteMetadata metadataWithTitle(const std::string& title) = 0;

  /// Both note searches throw std::invalid_argument for an invalid query, such as one with an
  /// unknown directive; what() is the message for the user.
  virtual RecordList<SearchResult> searchNotes(const std::string& query,
                                               const ListRequest& request) = 0;
  /// See TextSearcher::search.
  virtual std::vector<SearchMatch> searchInNote(const std::string& id, const std::string& string,
                                                std::int64_t context,
                                                std::optional<std::int64_t> limit) = 0;
  virtual RecordList<NoteMetadata> listNotes(const ListRequest& request) = 0;
  virtual RecordList<Note> listNotesWithContent(const ListRequest& request) = 0;
  virtual RecordList<SearchResultWithContent> searchNotesWithContent(
      const std::string& query, const ListRequest& request) = 0;
  /// The canonical names of the note's tags, ascending; without an id, of all tags that have notes.
  virtual std::vector<std::string> listTags(const std::optional<std::string>& id) = 0;

  virtual WriteResponse editNote(const std::string& id, const EditOperation& edit,
                                 const RemovalGate& gate) = 0;
  virtual WriteResponse editNoteBatch(const std::string& id,
                                      const std::vector<EditOperation>& edits,
                                      const RemovalGate& gate) = 0;
  /// Throws `hashMismatch` if `baseHash` is given and is not the ContentHash of the current text.
  virtual WriteResponse overwriteNote(const std::string& id, const std::string& text,
                                      const std::optional<std::string>& baseHash,
                                      const RemovalGate& gate) = 0;
  virtual Note createNote(const std::string& title, const std::optional<std::string>& content,
                          const std::vector<std::string>& tags) = 0;
  virtual Note createNoteFromText(const std::string& text,
                                  const std::vector<std::string>& tags) = 0;
  /// Returns the active note of this title unchanged, or creates one. Throws
  /// `titleMatchesMultiple`.
  virtual Note createNoteIfAbsent(const std::string& title,
                                  const std::optional<std::string>& content,
                                  const std::vector<std::string>& tags) = 0;
  virtual WriteResponse insertText(const std::string& id, const std::string& text,
                                   InsertPosition position) = 0;

  virtual WriteResponse addTags(const std::string& id, const std::vector<std::string>& tags) = 0;
  virtual WriteResponse removeTags(const std::string& id, const std::vector<std::string>& tags) = 0;
  /// Also renames the tag's descendants. Returns the number of notes that had the tag or a
  /// descendant, 0 if there is no such tag.
  virtual std::int64_t renameTag(const std::string& oldName, const std::string& newName) = 0;
  /// Leaves the tag's descendants. Returns the number of notes that had the tag.
  virtual std::int64_t deleteTag(const std::string& name) = 0;

  virtual WriteResponse moveNote(const std::string& id, NoteLocation target) = 0;

  virtual std::vector<AttachmentInfo> listAttachments(const std::string& id) = 0;
  /// Stores the bytes under the file name, numbered ("photo 2.jpg") if the note has such a file,
  /// and links the file at the end of the text. Throws std::runtime_error for an invalid name:
  /// empty, "." or "..", with "/" or NUL, over 255 bytes, or not UTF-8.
  virtual WriteResponse addAttachment(const std::string& id, const std::string& bytes,
                                      const std::string& filename) = 0;
  /// Both throw `attachmentNotFound`.
  virtual WriteResponse deleteAttachment(const std::string& id, const std::string& filename) = 0;
  virtual std::string readAttachment(const std::string& id, const std::string& filename) = 0;

  /// The number of notes that a rename of the tag changes: those with the tag or a descendant.
  virtual std::int64_t tagNoteCount(const std::string& name) = 0;
  /// The note's pin contexts; without an id, all that are in use. "global" is first, then hashtags.
  virtual std::vector<std::string> listPins(const std::optional<std::string>& id) = 0;
  virtual WriteResponse pinNote(const std::string& id) = 0;
  virtual WriteResponse unpinNote(const std::string& id) = 0;
  /// Looks up `name` as given, without turning it into a canonical name.
  virtual bool tagExists(const std::string& name) = 0;
  virtual WriteResponse pinNoteInTag(const std::string& id, const std::string& tag) = 0;
  virtual WriteResponse unpinNoteInTag(const std::string& id, const std::string& tag) = 0;

  /// Drops all notes read so far from memory, so that the next call reads the current state.
  virtual void reset() = 0;
};

}  // namespace tavi
