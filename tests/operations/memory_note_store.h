#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "domain/note_store.h"

namespace tavi::testing {

/// A note store in memory: the rules of NoteStore on a vector of notes. Tags are a list beside
/// the text, and a search knows a tag or one plain term. Every call is noted in `calls`. Copies
/// are stores of their own on the same notes, as two runs of the program have them.
class MemoryNoteStore : public NoteStore {
 public:
  struct StoredNote {
    NoteMetadata metadata;
    std::string content;
    std::vector<std::pair<std::string, std::string>> files;  ///< names and bytes
  };

 private:
  struct Contents {
    std::vector<StoredNote> notes;
    std::vector<std::string> loneTags, calls;
  };
  std::shared_ptr<Contents> contents_ = std::make_shared<Contents>();
  std::vector<StoredNote>& notes_ = contents_->notes;
  std::vector<std::string>& loneTags_ = contents_->loneTags;

 public:
  std::vector<std::string>& calls = contents_->calls;

  /// Adds a note called `title` with an id such as "ID-1"; the reference is valid until the next.
  StoredNote& add(const std::string& title, const std::string& content = "");
  StoredNote& find(const std::string& id);
  /// A tag that exists and has no notes.
  void addTag(const std::string& name) { loneTags_.push_back(name); }

  Note noteWithID(const std::string& id) override;
  Note noteWithTitle(const std::string& title) override;
  NoteMetadata metadataWithID(const std::string& id) override;
  NoteMetadata metadataWithTitle(const std::string& title) override;
  RecordList<SearchResult> searchNotes(const std::string& query,
                                       const ListRequest& request) override;
  std::vector<SearchMatch> searchInNote(const std::string& id, const std::string& string,
                                        std::int64_t context,
                                        std::optional<std::int64_t> limit) override;
  RecordList<NoteMetadata> listNotes(const ListRequest& request) override;
  RecordList<Note> listNotesWithContent(const ListRequest& request) override;
  RecordList<SearchResultWithContent> searchNotesWithContent(const std::string& query,
                                                             const ListRequest& request) override;
  std::vector<std::string> listTags(const std::optional<std::string>& id) override;
  WriteResponse editNote(const std::string& id, const EditOperation& edit,
                         const RemovalGate& gate) override;
  WriteResponse editNoteBatch(const std::string& id, const std::vector<EditOperation>& edits,
                              const RemovalGate& gate) override;
  WriteResponse overwriteNote(const std::string& id, const std::string& text,
                              const std::optional<std::string>& baseHash,
                              const RemovalGate& gate) override;
  Note createNote(const std::string& title, const std::optional<std::string>& content,
                  const std::vector<std::string>& tags) override;
  Note createNoteFromText(const std::string& text, const std::vector<std::string>& tags) override;
  Note createNoteIfAbsent(const std::string& title, const std::optional<std::string>& content,
                          const std::vector<std::string>& tags) override;
  WriteResponse insertText(const std::string& id, const std::string& text,
                           InsertPosition position) override;
  WriteResponse addTags(const std::string& id, const std::vector<std::string>& tags) override;
  WriteResponse removeTags(const std::string& id, const std::vector<std::string>& tags) override;
  std::int64_t renameTag(const std::string& oldName, const std::string& newName) override;
  std::int64_t deleteTag(const std::string& name) override;
  WriteResponse moveNote(const std::string& id, NoteLocation target) override;
  std::vector<AttachmentInfo> listAttachments(const std::string& id) override;
  WriteResponse addAttachment(const std::string& id, const std::string& bytes,
                              const std::string& filename) override;
  WriteResponse deleteAttachment(const std::string& id, const std::string& filename) override;
  std::string readAttachment(const std::string& id, const std::string& filename) override;
  std::int64_t tagNoteCount(const std::string& name) override;
  std::vector<std::string> listPins(const std::optional<std::string>& id) override;
  WriteResponse pinNote(const std::string& id) override;
  WriteResponse unpinNote(const std::string& id) override;
  bool tagExists(const std::string& name) override;
  WriteResponse pinNoteInTag(const std::string& id, const std::string& tag) override;
  WriteResponse unpinNoteInTag(const std::string& id, const std::string& tag) override;
  void reset() override {}

 private:
  StoredNote& findUnlocked(const std::string& id);
  StoredNote& findTitled(const std::string& title);
  std::vector<const StoredNote*> page(const ListRequest& request, const std::string& query);
  template <class Change>
  WriteResponse changed(StoredNote& note, const Change& change);
  WriteResponse withText(StoredNote& note, const std::string& text, const RemovalGate& gate);
  WriteResponse withPin(const std::string& id, const std::string& pin, bool present);
  std::string tagPin(const std::string& tag);
};

}  // namespace tavi::testing
