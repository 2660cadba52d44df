#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "domain/importing_store.h"
#include "platform/model/objects/core_data_stack.h"
#include "platform/model/objects/note_tag.h"

namespace tavi {

/// The NoteStore over the application's database, built on the model (platform/model).
///
/// A write looks the note up, changes it in memory, checks the result and saves once. The save
/// detects changes that another process made in between and then throws `concurrentModification`.
class TaviDatabaseStore : public ImportingStore {
 public:
  /// `preserveModificationDate`: changes of texts leave the modification date as it is.
  TaviDatabaseStore(std::unique_ptr<tavimodel::KVCoreDataStackForExtensions> stack,
                    bool preserveModificationDate);
  ~TaviDatabaseStore() override;

  // Reading: reading.cpp
  Note noteWithID(const std::string& id) override;
  Note noteWithTitle(const std::string& title) override;
  NoteMetadata metadataWithID(const std::string& id) override;
  NoteMetadata metadataWithTitle(const std::string& title) override;
  std::vector<SearchMatch> searchInNote(const std::string& id, const std::string& string,
                                        std::int64_t context,
                                        std::optional<std::int64_t> limit) override;
  std::vector<std::string> listTags(const std::optional<std::string>& id) override;

  // Lists and searches: listing.cpp
  RecordList<NoteMetadata> listNotes(const ListRequest& request) override;
  RecordList<Note> listNotesWithContent(const ListRequest& request) override;
  RecordList<SearchResult> searchNotes(const std::string& query,
                                       const ListRequest& request) override;
  RecordList<SearchResultWithContent> searchNotesWithContent(const std::string& query,
                                                             const ListRequest& request) override;

  // Writing texts: writing.cpp
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

  // Tags, pins, moves: tags_and_pins.cpp
  WriteResponse addTags(const std::string& id, const std::vector<std::string>& tags) override;
  WriteResponse removeTags(const std::string& id, const std::vector<std::string>& tags) override;
  std::int64_t renameTag(const std::string& oldName, const std::string& newName) override;
  std::int64_t deleteTag(const std::string& name) override;
  std::int64_t tagNoteCount(const std::string& name) override;
  bool tagExists(const std::string& name) override;
  WriteResponse moveNote(const std::string& id, NoteLocation target) override;
  std::vector<std::string> listPins(const std::optional<std::string>& id) override;
  WriteResponse pinNote(const std::string& id) override;
  WriteResponse unpinNote(const std::string& id) override;
  WriteResponse pinNoteInTag(const std::string& id, const std::string& tag) override;
  WriteResponse unpinNoteInTag(const std::string& id, const std::string& tag) override;

  // Attachments: attachments.cpp
  std::vector<AttachmentInfo> listAttachments(const std::string& id) override;
  WriteResponse addAttachment(const std::string& id, const std::string& bytes,
                              const std::string& filename) override;
  WriteResponse deleteAttachment(const std::string& id, const std::string& filename) override;
  std::string readAttachment(const std::string& id, const std::string& filename) override;

  // Importing: importing.cpp
  bool importNote(const ImportedNote& note) override;
  void saveImported() override;

  void reset() override;

 private:
  tavimodel::ManagedObjectContext& context() { return *stack_->managedObjectContext(); }
  /// Throws `noteNotFound`.
  tavimodel::KVNote& anyNoteWithID(const std::string& id);
  /// Throws `noteNotFound` or `noteIsLocked`.
  tavimodel::KVNote& unlockedNoteWithID(const std::string& id);
  std::vector<tavimodel::KVNote*> activeNotesWithTitle(const std::string& title);
  /// Null if there is none. Throws `titleMatchesMultiple`.
  tavimodel::KVNote* onlyActiveNoteWithTitle(const std::string& title);
  /// The active note of this title, or of the title that a note created with it (from `text`) would
  /// have: "Fix `foo`" becomes "Fix foo". Null if there is none. Throws `titleMatchesMultiple`.
  tavimodel::KVNote* noteMadeWithTitle(const std::string& title, const std::string& text);
  /// Throws `noNoteWithTitle` or `titleMatchesMultiple`.
  tavimodel::KVNote& noteForTitle(const std::string& title);
  /// Throws `tagNotFound`.
  tavimodel::KVNoteTag tagForPin(const std::string& tag);
  /// The tag with the canonical name of `text`. If there is none, a tag that another program
  /// created under a name that is not canonical: exactly `text`, or one with the same canonical
  /// name.
  std::optional<tavimodel::KVNoteTag> findTag(const std::string& text);

  /// Throws `concurrentModification` and the model's other errors.
  void save();
  /// Does a save of the model, whose conflicts become NoteStoreError::concurrentModification.
  static void namingConflicts(const std::function<void()>& save);
  void updateText(tavimodel::KVNote& note, std::string text, tavimodel::UnlinkedFiles unlinked);
  WriteResponse rewrite(tavimodel::KVNote& note, std::string text, const RemovalGate& gate);
  /// Rolls back and throws `attachmentRemovalGateFailed` if the gate refuses the change.
  void passGate(const NoteMetadata& before, const NoteMetadata& after, const RemovalGate& gate);
  Note newNote(const std::string& text, const std::vector<std::string>& tags, bool tagsAtBottom);
  /// Changes the note with `make`, checks the gate, if any, and saves. The response has what
  /// changed.
  WriteResponse change(tavimodel::KVNote& note, const std::function<void()>& make,
                       const RemovalGate* gate = nullptr);

  std::unique_ptr<tavimodel::KVCoreDataStackForExtensions> stack_;
  bool preserveModificationDate_;
};

}  // namespace tavi
