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

/// The notes that a run has to do with. Each note is one object (identity map). Reads see one state
/// of the database, from the first read to the next save or reset.
///
/// A save is one transaction, and finds every change that another process made to a changed note
/// since it was read: nothing is merged, nothing half-overwritten.
class ManagedObjectContext {
 public:
  ManagedObjectContext(sqlite::Connection& connection, FileStore& files);

  /// The notes of a list, in the request's order; they are not objects of the context.
  NoteTable fetch(const FetchRequest& request);
  /// How many notes the request finds; its order, offset and limit do not count.
  std::int64_t count(const FetchRequest& request);

  /// Whether any note is pinned globally, wherever it is.
  bool hasPinnedNote();

  /// Calls `visit` with each note of a list and its text, in order, holding one text at a time.
  void forEachText(const NoteTable& table,
                   const std::function<void(const NoteView&, std::string_view)>& visit);

  /// Forgets everything, and holds the database's write lock until the next save, rollback or
  /// reset: what is read until then is what the save finds.
  void lockForWriting();
  bool hasChanges();
  /// Throws DomainError for a save conflict, else sqlite::Error or std::system_error; of a save
  /// that failed nothing is stored.
  void save();
  /// Forgets all changes.
  void rollback();
  /// Forgets everything. Notes handed out before are gone.
  void reset();

  // For the objects of the model.

  /// The connection for a read, in the context's snapshot.
  sqlite::Connection& reading();
  FileStore& files() { return files_; }
  /// The note of a row: the one that is there already, or a new one.
  KVNote& noteOf(NoteRow row);
  std::vector<KVNote*> notesOf(std::vector<NoteRow> rows);
  /// The notes that carry the tag named, or one of its children too.
  std::vector<KVNote*> notesWithTag(std::string_view name, bool children);
  std::vector<KVNote*> notesPinnedIn(std::string_view name, bool children);
  /// A note that the next save puts into the database.
  KVNote& insert(NoteState state);

 private:
  /// A note's state, and the object through which others see it.
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
