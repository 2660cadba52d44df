#include "platform/model/objects/note_batches.h"

#include <algorithm>
#include <utility>

namespace tavimodel {
namespace {

constexpr std::size_t mostNotes = 128;
constexpr std::size_t mostBytes = 1024 * 1024;

}  // namespace

void NoteBatches::change(std::span<KVNote* const> notes) {
  const bool inBackground = notes.size() > mostNotes;
  Batch previous;
  while (!notes.empty()) {
    Batch batch = read(notes);
    notes = notes.subspan(batch.notes.size());
    previous.plans.finish();
    const std::span<const NoteChange> changes = batch.changes;
    const auto plan = [changes](std::size_t i) {
      if (changes[i].plan) changes[i].plan();
    };
    batch.plans = platform::system::SharedWork(changes.size(), plan, inBackground);
    write(previous);
    previous = std::move(batch);
  }
  previous.plans.finish();
  write(previous);
  indexChanges_.write(connection_);
}

/// Reads the first few of the notes. Their texts are read under the write lock; whether their rows
/// have changed since they were read is told by their versions, when they are written.
NoteBatches::Batch NoteBatches::read(std::span<KVNote* const> notes) {
  Batch batch;
  std::size_t bytes = 0;
  while (batch.changes.size() < std::min(notes.size(), mostNotes) && bytes < mostBytes) {
    KVNote& note = *notes[batch.changes.size()];
    if (note.held_.now.text) writer_.checkVersion(note.held_.now);
    batch.changes.push_back(begin_(note));
    if (note.held_.now.text) bytes += note.held_.now.text->size();
  }
  batch.notes = notes.first(batch.changes.size());
  return batch;
}

/// Writes the notes, and frees what was read of them.
void NoteBatches::write(Batch& batch) {
  std::vector<HeldNote*> others;
  for (std::size_t i = 0; i < batch.notes.size(); ++i) {
    if (batch.changes[i].apply) batch.changes[i].apply();
    HeldNote& held = batch.notes[i]->held_;
    if (!writeText(held, batch.changes[i])) others.push_back(&held);
  }
  if (!others.empty()) triggersOff_.reset();
  for (HeldNote* held : others) {
    writer_.checkVersion(held->committed ? *held->committed : held->now);
    if (held->committed) writer_.update(held->now, *held->committed);
  }
  for (KVNote* note : batch.notes) {
    HeldNote& held = note->held_;
    held.committed.reset();
    held.now.text.reset();
    held.now.tags.reset();
    held.now.pinnedInTags.reset();
    held.now.files.reset();
  }
  if (indexChanges_.areMany()) indexChanges_.write(connection_);
}

/// Writes a note of which only the text has changed. Returns false for another, with nothing done.
bool NoteBatches::writeText(HeldNote& held, const NoteChange& change) {
  if (!ownTriggersOnly_ || !held.committed) return false;
  if (!NoteWriter::differInText(held.now, *held.committed)) return false;
  if (!triggersOff_) triggersOff_.emplace(connection_);
  const std::optional<std::int64_t> searchRow = held.committed->row.searchRow;
  const bool staysIndexed = searchRow && change.trigrams && *change.trigrams;
  if (!writer_.updateText(held.now, *held.committed, staysIndexed)) return false;
  if (staysIndexed) indexChanges_.add(*searchRow, **change.trigrams);
  return true;
}

}  // namespace tavimodel
