#pragma once

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <span>
#include <vector>

#include "platform/model/objects/note.h"
#include "platform/model/objects/note_writer.h"

namespace tavimodel {

/// Changes many notes in the caller's write transaction, in batches: while another thread plans the
/// changes of one batch, the previous one is written and the next one read. After that, both
/// threads plan what is left.
class NoteBatches {
 public:
  NoteBatches(NoteWriter& writer, const std::function<NoteChange(KVNote&)>& begin)
      : writer_(writer), begin_(begin) {}

  /// Throws what the steps throw, sqlite::Error, and DomainError if another program has changed a
  /// note since its row was read.
  void change(std::span<KVNote* const> notes);

 private:
  struct Batch {
    std::span<KVNote* const> notes;
    std::vector<NoteChange> changes;  // one for each note
    std::unique_ptr<std::atomic<std::size_t>> nextPlan;
    std::future<void> planned;  // destroyed first, which waits for the thread
  };

  Batch read(std::span<KVNote* const> notes);
  static void finishPlans(Batch& batch);
  void write(Batch& batch);

  NoteWriter& writer_;
  const std::function<NoteChange(KVNote&)>& begin_;
};

}  // namespace tavimodel
