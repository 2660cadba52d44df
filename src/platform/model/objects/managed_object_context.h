#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/model/lists/fetch_request.h"
#include "platform/model/lists/note_table.h"
#include "platform/model/objects/note.h"
#include "platform/model/storage/file_store.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The notes in use, each as one object (identity map). All reads from the first one to the next
/// save or reset see the same snapshot of the database. Functions throw sqlite::Error.
///
/// A save is one transaction. It fails if another process has changed a modified note since it was
/// read, so that nothing is merged or partly overwritten.
class ManagedObjectContext {
 public:
  ManagedObjectContext(sqlite::Connection& connection, FileStore& files);

  /// Returns the notes of a list, in the request's order. They are not objects of the context.
  NoteTable fetch(const FetchRequest& request);
  /// Counts the notes that the request finds, ignoring its offset and limit.
  std::int64_t count(const FetchRequest& request);

  /// Whether any note in any location is pinned globally.
  bool hasPinnedNote();

  /// Calls `visit` with each note of a list and its text, in order, with one text in memory at a
  /// time.
  void forEachText(const NoteTable& table,
                   const std::function<void(const NoteView&, std::string_view)>& visit);

  /// Does a reset, and holds the database's write lock until the next save, rollback or reset, so
  /// that the save cannot conflict.
  void lockForWriting();
  bool hasChanges();
  /// Stores all changes. Throws DomainError for a conflict, otherwise sqlite::Error or
  /// std::system_error; a failed save stores nothing.
  void save();
  /// Changes many notes, which must not have unsaved changes, and saves them in one transaction.
  /// Only a few of their texts are in memory at a time. `begin` may read a note but not change it.
  /// Fails like a save and in addition if a step throws, and then does a reset.
  void saveEach(const std::vector<KVNote*>& notes, const std::function<NoteChange(KVNote&)>& begin);
  /// Discards all changes.
  void rollback();
  /// Discards all changes and all notes; references to notes become invalid.
  void reset();

  // The rest is used by the objects of the model only.

  /// Returns the connection, in the context's snapshot, which it opens if needed.
  sqlite::Connection& reading();
  FileStore& files() { return files_; }
  /// Returns the object of a row's note, and creates it if needed.
  KVNote& noteOf(NoteRow row);
  std::vector<KVNote*> notesOf(std::vector<NoteRow> rows);
  /// The notes with the tag `name` or, if `children`, with a descendant of it.
  std::vector<KVNote*> notesWithTag(std::string_view name, bool children);
  std::vector<KVNote*> notesPinnedIn(std::string_view name, bool children);
  /// Adds a note, which the next save inserts into the database.
  KVNote& insert(NoteState state);

 private:
  /// A note's state and its public object.
  struct Entry {
    Entry(ManagedObjectContext& context, NoteState state)
        : held{std::move(state), nullptr}, note(context, held) {}
    HeldNote held;
    KVNote note;
  };
  using Entries = std::vector<HeldNote*>;

  void beginWriting();
  Entries changed();
  void write(const Entries& changed);

  sqlite::Connection& connection_;
  FileStore& files_;
  std::unique_ptr<sqlite::Transaction> snapshot_;
  bool locked_ = false;  ///< the snapshot is a write transaction
  std::unordered_map<std::int64_t, std::unique_ptr<Entry>> notes_;
  std::vector<std::unique_ptr<Entry>> inserted_;
};

}  // namespace tavimodel
