#pragma once

#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "platform/model/objects/note.h"
#include "platform/model/objects/note_writer.h"
#include "platform/model/search/index_changes.h"
#include "platform/model/storage/schema.h"
#include "platform/model/storage/sqlite.h"
#include "platform/system/shared_work.h"

namespace tavimodel {

/// Changes many notes in the caller's write transaction, in batches: while another thread plans the
/// changes of one batch, the previous one is written and the next one read. After that, both
/// threads plan what is left.
class NoteBatches {
 public:
  NoteBatches(sqlite::Connection& connection, NoteWriter& writer,
              const std::function<NoteChange(KVNote&)>& begin)
      : connection_(connection),
        writer_(writer),
        begin_(begin),
        ownTriggersOnly_(hasOwnTriggersOnly(connection)) {}

  /// Throws what the steps throw, sqlite::Error, and DomainError if another program has changed a
  /// note since its row was read.
  void change(std::span<KVNote* const> notes);

 private:
  struct Batch {
    std::span<KVNote* const> notes;
    std::vector<NoteChange> changes;  // one for each note
    platform::system::SharedWork plans;
  };

  Batch read(std::span<KVNote* const> notes);
  void write(Batch& batch);
  bool writeText(HeldNote& held, const NoteChange& change);

  sqlite::Connection& connection_;
  NoteWriter& writer_;
  const std::function<NoteChange(KVNote&)>& begin_;
  bool ownTriggersOnly_;
  std::optional<sqlite::TriggersOff> triggersOff_;
  IndexChanges indexChanges_;
};

}  // namespace tavimodel
