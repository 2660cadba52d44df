#include "platform/model/objects/managed_object_context.h"

#include <algorithm>
#include <utility>

#include "platform/model/lists/note_fetch.h"
#include "platform/model/objects/note_batches.h"
#include "platform/model/objects/note_reader.h"
#include "platform/model/objects/note_writer.h"

namespace tavimodel {
namespace {

constexpr std::size_t manyNotes = 100;
/// Pages that do not fit in the cache would be written to the log and read again repeatedly.
constexpr const char* cacheForMany = "PRAGMA cache_size = -65536";  // KiB

}  // namespace

ManagedObjectContext::ManagedObjectContext(sqlite::Connection& connection, FileStore& files)
    : connection_(connection), files_(files) {}

sqlite::Connection& ManagedObjectContext::reading() {
  using sqlite::Transaction;
  if (!snapshot_) snapshot_ = std::make_unique<Transaction>(connection_, Transaction::Kind::read);
  return connection_;
}

NoteTable ManagedObjectContext::fetch(const FetchRequest& request) {
  return NoteFetch(reading()).table(request);
}

std::int64_t ManagedObjectContext::count(const FetchRequest& request) {
  return NoteFetch(reading()).count(request);
}

bool ManagedObjectContext::hasPinnedNote() {
  return reading()
      .query(
          "SELECT 1 FROM noteSummary WHERE trashed IN (0, 1) AND archived IN (0, 1) AND pinned = 1")
      .step();
}

void ManagedObjectContext::forEachText(
    const NoteTable& table, const std::function<void(const NoteView&, std::string_view)>& visit) {
  std::vector<std::string_view> tags;
  table.forEachText(reading(), [&](std::size_t index, std::string_view text) {
    visit(table.note(index, tags), text);
  });
}

void ManagedObjectContext::beginWriting() {
  using sqlite::Transaction;
  snapshot_ = std::make_unique<Transaction>(connection_, Transaction::Kind::write);
  locked_ = true;
}

void ManagedObjectContext::lockForWriting() {
  reset();
  beginWriting();
}

ManagedObjectContext::Entries ManagedObjectContext::changed() {
  Entries changed;
  for (auto& [id, entry] : notes_) {
    if (entry->held.committed) changed.push_back(&entry->held);
  }
  return changed;
}

bool ManagedObjectContext::hasChanges() {
  return !inserted_.empty() || !changed().empty();
}

void ManagedObjectContext::save() {
  const Entries changed = this->changed();
  if (!locked_) snapshot_.reset();
  if (changed.size() > manyNotes) connection_.execute(cacheForMany);
  if (!locked_) beginWriting();
  const std::unique_ptr<sqlite::Transaction> transaction = std::move(snapshot_);
  locked_ = false;
  write(changed);
  transaction->commit();

  files_.publishStaged();
  for (HeldNote* note : changed) note->committed.reset();
  for (auto& entry : inserted_) {
    const std::int64_t id = entry->held.now.row.id;
    notes_.emplace(id, std::move(entry));
  }
  inserted_.clear();
}

void ManagedObjectContext::write(const Entries& changed) {
  NoteWriter writer(connection_);
  for (HeldNote* note : changed) writer.checkVersion(*note->committed);
  for (HeldNote* note : changed) writer.update(note->now, *note->committed);
  for (auto& entry : inserted_) writer.insert(entry->held.now);
  writer.removeDeadTags();
}

void ManagedObjectContext::saveEach(const std::vector<KVNote*>& notes,
                                    const std::function<NoteChange(KVNote&)>& begin) {
  if (notes.empty()) return;
  try {
    snapshot_.reset();
    if (notes.size() > manyNotes) connection_.execute(cacheForMany);
    beginWriting();
    NoteWriter writer(connection_);
    NoteBatches(connection_, writer, begin).change(notes);
    writer.removeDeadTags();
    snapshot_->commit();
  } catch (...) {
    reset();
    throw;
  }
  snapshot_.reset();
  locked_ = false;
}

void ManagedObjectContext::rollback() {
  if (locked_) snapshot_.reset();
  locked_ = false;
  for (HeldNote* note : changed()) note->now = std::move(*std::exchange(note->committed, nullptr));
  inserted_.clear();
  files_.discardStaged();
}

void ManagedObjectContext::reset() {
  snapshot_.reset();
  locked_ = false;
  notes_.clear();
  inserted_.clear();
  files_.discardStaged();
}

KVNote& ManagedObjectContext::noteOf(NoteRow row) {
  std::unique_ptr<Entry>& slot = notes_[row.id];
  if (!slot) {
    NoteState state;
    state.row = std::move(row);
    slot = std::make_unique<Entry>(*this, std::move(state));
  }
  return slot->note;
}

KVNote& ManagedObjectContext::insert(NoteState state) {
  inserted_.push_back(std::make_unique<Entry>(*this, std::move(state)));
  return inserted_.back()->note;
}

std::vector<KVNote*> ManagedObjectContext::notesOf(std::vector<NoteRow> rows) {
  notes_.reserve(notes_.size() + rows.size());
  std::vector<KVNote*> notes;
  notes.reserve(rows.size());
  for (NoteRow& row : rows) notes.push_back(&noteOf(std::move(row)));
  return notes;
}

std::vector<KVNote*> ManagedObjectContext::notesWithTag(std::string_view name, bool children) {
  return notesOf(NoteReader(reading()).rowsWithTag("noteTag", name, children));
}

std::vector<KVNote*> ManagedObjectContext::notesPinnedIn(std::string_view name, bool children) {
  return notesOf(NoteReader(reading()).rowsWithTag("pinnedInTag", name, children));
}

}  // namespace tavimodel
