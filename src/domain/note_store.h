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

/// What a list or a search asks for besides its query.
struct ListRequest {
  SortCriteria sort;
  std::int64_t limit = INT64_MAX;        ///< greater than 0
  std::int64_t offset = 0;               ///< rows to skip, not negative
  std::optional<NoteLocation> location;  ///< absent: every location
  /// Canonical name of a tag that the notes carry, or one below it; absent: any notes. Such a list
  /// sorts titles as a search does.
  std::optional<std::string> tag = std::nullopt;
  /// Whether the caller looks at hash, length, to-dos, pins and attachments: they cost reading.
  bool detailed = true;
};

/// The declaration of which attachments a write removes.
struct RemovalGate {
  std::optional<std::set<std::string>> expected;  ///< file names; absent is the empty set
  bool force = false;                             ///< skips the gate, declaration and all
};

/// The storage interface. Every operation returns its result or throws NoteStoreError or an error
/// of the platform (std::exception), which passes through unchanged.
///
/// Titles match case-insensitively and among active notes only: to reach the trash and the archive
/// a caller uses an id. A locked note's text is refused with `noteIsLocked` by everything that
/// reads or changes text; metadata, lists, searches, moves and pins work on it, with empty content.
/// A write returns only after it is durable; of a write that fails nothing is saved.
class NoteStore {
 public:
  virtual ~NoteStore() = default;

  virtual Note noteWithID(const std::string& id) = 0;
  virtual Note noteWithTitle(const std::string& title) = 0;
  virtual NoteMetadata metadataWithID(const std::string& id) = 0;
  virtual NoteMetadata metadataWithTitle(const std::string& title) = 0;

  /// The searches throw std::invalid_argument, whose what() is the message for the user, for a
  /// query that cannot mean anything, such as one with an unknown directive.
  virtual RecordList<SearchResult> searchNotes(const std::string& query,
                                               const ListRequest& request) = 0;
  /// `context` in characters; `limit` absent means all.
  virtual std::vector<SearchMatch> searchInNote(const std::string& id, const std::string& string,
                                                std::int64_t context,
                                                std::optional<std::int64_t> limit) = 0;
  virtual RecordList<NoteMetadata> listNotes(const ListRequest& request) = 0;
  virtual RecordList<Note> listNotesWithContent(const ListRequest& request) = 0;
  virtual RecordList<SearchResultWithContent> searchNotesWithContent(
      const std::string& query, const ListRequest& request) = 0;
  /// Canonical names, ascending: the note's, or every tag that has notes.
  virtual std::vector<std::string> listTags(const std::optional<std::string>& id) = 0;

  virtual WriteResponse editNote(const std::string& id, const EditOperation& edit,
                                 const RemovalGate& gate) = 0;
  virtual WriteResponse editNoteBatch(const std::string& id,
                                      const std::vector<EditOperation>& edits,
                                      const RemovalGate& gate) = 0;
  virtual WriteResponse overwriteNote(const std::string& id, const std::string& text,
                                      const std::optional<std::string>& baseHash,
                                      const RemovalGate& gate) = 0;
  virtual Note createNote(const std::string& title, const std::optional<std::string>& content,
                          const std::vector<std::string>& tags) = 0;
  virtual Note createNoteFromText(const std::string& text,
                                  const std::vector<std::string>& tags) = 0;
  /// The one active note of this title as it is, or a new one.
  virtual Note createNoteIfAbsent(const std::string& title,
                                  const std::optional<std::string>& content,
                                  const std::vector<std::string>& tags) = 0;
  virtual WriteResponse insertText(const std::string& id, const std::string& text,
                                   InsertPosition position) = 0;

  virtual WriteResponse addTags(const std::string& id, const std::vector<std::string>& tags) = 0;
  virtual WriteResponse removeTags(const std::string& id, const std::vector<std::string>& tags) = 0;
  /// The number of notes that carried the old tag, 0 when there is no such tag.
  virtual std::int64_t renameTag(const std::string& oldName, const std::string& newName) = 0;
  virtual std::int64_t deleteTag(const std::string& name) = 0;

  virtual WriteResponse moveNote(const std::string& id, NoteLocation target) = 0;

  virtual std::vector<AttachmentInfo> listAttachments(const std::string& id) = 0;
  virtual WriteResponse addAttachment(const std::string& id, const std::string& bytes,
                                      const std::string& filename) = 0;
  virtual WriteResponse deleteAttachment(const std::string& id, const std::string& filename) = 0;
  virtual std::string readAttachment(const std::string& id, const std::string& filename) = 0;

  /// The notes that carry the tag or one below it: those that a rename of it changes.
  virtual std::int64_t tagNoteCount(const std::string& name) = 0;
  /// Pin contexts, "global" first: the note's, or every one in use.
  virtual std::vector<std::string> listPins(const std::optional<std::string>& id) = 0;
  virtual WriteResponse pinNote(const std::string& id) = 0;
  virtual WriteResponse unpinNote(const std::string& id) = 0;
  /// `name` is looked up as it is, not sanitised.
  virtual bool tagExists(const std::string& name) = 0;
  virtual WriteResponse pinNoteInTag(const std::string& id, const std::string& tag) = 0;
  virtual WriteResponse unpinNoteInTag(const std::string& id, const std::string& tag) = 0;

  /// Forgets everything read so far.
  virtual void reset() = 0;
};

}  // namespace tavi
