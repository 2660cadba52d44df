#include "platform/model/search/search_index.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>

#include "platform/model/search/slice_blocks.h"
#include "platform/model/storage/note_links.h"
#include "platform/model/storage/row_ids.h"
#include "platform/model/storage/schema.h"
#include "platform/model/storage/text_facts.h"
#include "platform/system/shared_work.h"
#include "platform/text/folding.h"

namespace tavimodel {
namespace {

/// Limit of trigrams per look-up. Each of them reads a page of every slice, and more than a dozen
/// hardly narrow the result.
constexpr std::size_t mostTrigrams = 12;

/// Slices with fewer notes are merged into one of `whole` notes, if there are more than
/// `mostSmallSlices` of them.
constexpr std::int64_t smallPart(std::int64_t whole) {
  return whole * 3 / 4;
}
constexpr std::size_t mostSmallSlices = 8;
/// Limit of `searchSlice.firsts` in bytes: a slice with few notes but many trigrams is not merged.
constexpr std::int64_t mostFirsts = 8192;

/// Limit of the texts that are read at once, of which the last may have more bytes.
constexpr std::size_t fewBytes = std::size_t{1} << 18;
/// The number of texts without facts for which a second thread is started.
constexpr std::ptrdiff_t worthAThread = 16;

/// The trigrams used to look up a term, spread over its length.
std::vector<Trigram> tellingTrigrams(std::string_view folded) {
  std::vector<Trigram> all;
  forEachTrigram(folded, [&](Trigram trigram) { all.push_back(trigram); });
  if (all.size() <= mostTrigrams) return all;
  std::vector<Trigram> some;
  for (std::size_t i = 0; i < mostTrigrams; ++i) {
    some.push_back(all[i * (all.size() - 1) / (mostTrigrams - 1)]);
  }
  return some;
}

}  // namespace

/// A note while it is added to the index.
struct NoteToIndex {
  std::int64_t id = 0;
  std::string title;  ///< folded
  std::string text;
  bool isLocked = false;
  bool isDeleted = false;  ///< permanently
  bool lacksFacts = false;
  TextFacts facts;             ///< if they were lacking
  std::int64_t searchRow = 0;  ///< see noteSummary

  bool isReadable() const { return !isLocked && !isDeleted; }
};

std::optional<SearchIndex::Candidates> SearchIndex::candidates(std::string_view term,
                                                               std::size_t most) {
  const std::vector<Trigram> trigrams = tellingTrigrams(platform::text::foldedForSearch(term));
  if (trigrams.empty() || !hasSearchIndex(connection_)) return std::nullopt;

  Candidates result;
  std::vector<std::int64_t> rows = rowsWith(trigrams, most);
  result.complete = rows.size() <= most;
  if (!result.complete) rows.resize(most);
  const std::string list = jsonArray(rows);
  sqlite::Query notes = connection_.query(
      "SELECT s.note FROM json_each(?1) wanted CROSS JOIN noteSummary s "
      "ON s.searchRow = wanted.value "
      "UNION ALL SELECT note FROM noteSummary WHERE searchRow IS NULL");
  notes.bind(1, list);
  while (notes.step()) result.notes.push_back(notes.integer(0));
  std::sort(result.notes.begin(), result.notes.end());
  return result;
}

/// The values of `searchRow` of notes that may contain all trigrams. Stops after the slice in which
/// it finds more than `most`.
std::vector<std::int64_t> SearchIndex::rowsWith(const std::vector<Trigram>& trigrams,
                                                std::size_t most) {
  std::vector<std::int64_t> rows;
  sqlite::Query slices = connection_.query("SELECT slice, firsts FROM searchSlice");
  while (rows.size() <= most && slices.step()) {
    const std::int64_t slice = slices.integer(0);
    SliceReader reader(connection_, slice, slices.text(1));
    reader.notesWith(trigrams).forEach(
        [&](int position) { rows.push_back(slice * sliceCapacity + position); });
  }
  return rows;
}

/// Adds notes to the slice, and derives the other data from their titles and texts. Only the title
/// of a locked note is indexed, and nothing of a permanently deleted one. Stores the notes that
/// were added before.
void SearchIndex::add(SliceBuilder& builder, std::vector<NoteToIndex>& notes, std::int64_t slice,
                      const std::vector<NoteToIndex>& addedBefore) {
  // Deriving the facts takes as long as the rest.
  const auto deriveFacts = [&notes](std::size_t i) {
    if (notes[i].lacksFacts) notes[i].facts = TextFacts::of(notes[i].text);
  };
  const auto lacking = std::count_if(notes.begin(), notes.end(),
                                     [](const NoteToIndex& note) { return note.lacksFacts; });
  platform::system::SharedWork facts(notes.size(), deriveFacts, lacking >= worthAThread);
  for (const NoteToIndex& note : addedBefore) store(note);
  for (NoteToIndex& note : notes) {
    note.searchRow = slice * sliceCapacity + builder.notes();
    const std::string body =
        note.isReadable() ? platform::text::foldedForSearch(note.text) : std::string();
    builder.addNote({body, note.isDeleted ? std::string_view() : note.title});
  }
  facts.finish();
}

void SearchIndex::store(const NoteToIndex& note) {
  if (!note.lacksFacts) {
    sqlite::Query update =
        connection_.query("UPDATE noteSummary SET searchRow = ?2 WHERE note = ?1");
    return update.bind(1, note.id).bind(2, note.searchRow).run();
  }
  const TextFacts& facts = note.facts;
  sqlite::Query update = connection_.query(
      "UPDATE noteSummary SET searchRow = ?2, titleKey = nullif(?3 COLLATE NOCASE, title), "
      "textDigest = ?4, textLength = ?5, todoIncomplete = ?6, todoCompleted = ?7, features = ?8 "
      "WHERE note = ?1");
  update.bind(1, note.id).bind(2, note.searchRow).bind(3, note.title).bind(4, facts.digest);
  update.bind(5, facts.length).bind(6, facts.todoIncomplete).bind(7, facts.todoCompleted);
  update.bind(8, facts.features).run();
  if (note.isReadable()) storeLinks(connection_, note.id, facts.links);
}

std::int64_t SearchIndex::number(std::string_view sql) {
  sqlite::Query query = connection_.query(sql);
  query.step();
  return query.integer(0);
}

std::int64_t SearchIndex::newSlice() {
  return number("SELECT ifnull(max(slice), 0) + 1 FROM searchSlice");
}

std::vector<NoteToIndex> SearchIndex::nextUnknown(std::int64_t after, std::int64_t most) {
  sqlite::Query query = connection_.query(fmt::format(
      "SELECT s.note, note.title, note.text, note.encrypted, ifnull(note.permanentlyDeleted, 0), "
      "s.textDigest IS NULL OR {} "
      "FROM noteSummary s CROSS JOIN note ON note.id = s.note "
      "WHERE s.searchRow IS NULL AND s.note > ?1 ORDER BY s.note LIMIT ?2",
      FeatureSQL::linksNotStored));
  query.bind(1, after).bind(2, most);
  std::vector<NoteToIndex> notes;
  for (std::size_t bytes = 0; bytes < fewBytes && query.step();) {
    NoteToIndex& note = notes.emplace_back();
    note.id = query.integer(0);
    note.title = platform::text::foldedForSearch(query.text(1));
    note.text = query.text(2);
    note.isLocked = query.integer(3) != 0;
    note.isDeleted = query.integer(4) != 0;
    note.lacksFacts = query.integer(5) != 0;
    bytes += note.text.size();
  }
  return notes;
}

bool SearchIndex::areUnknown(std::int64_t atLeast) {
  sqlite::Query query = connection_.query(
      "SELECT count(*) FROM (SELECT 1 FROM noteSummary WHERE searchRow IS NULL LIMIT ?1)");
  query.bind(1, atLeast).step();
  return query.integer(0) >= atLeast;
}

/// Loads the last slice into the builder and returns it, if so many notes wait to be indexed that
/// it is worth writing it again, and it never lost one of its own. Otherwise returns a new one.
std::int64_t SearchIndex::sliceToFill(SliceBuilder& builder, std::int64_t whole) {
  sqlite::Query query = connection_.query(
      "SELECT slice, notes, length(firsts) FROM searchSlice ORDER BY slice DESC LIMIT 1");
  if (!query.step()) return 1;
  const std::int64_t last = query.integer(0);
  const std::int64_t notes = query.integer(1);
  const bool isSmall = notes < smallPart(whole) && query.integer(2) < mostFirsts;
  if (!isSmall || !areUnknown(notes)) return last + 1;
  const int count = static_cast<int>(notes);
  if (liveIn(last) != PositionSet::first(count)) return last + 1;
  builder.load(connection_, last, count);
  return last;
}

/// Indexes notes until a slice is full or the deadline has passed. Returns true if more notes may
/// be left. The builder must be empty, and is empty afterwards.
bool SearchIndex::addNotes(SliceBuilder& builder, Clock::time_point deadline, TidyBudget budget) {
  const std::int64_t slice = sliceToFill(builder, budget.notesInSlice);
  const int before = builder.notes();
  bool goesOn = true;
  std::int64_t last = INT64_MIN;
  std::vector<NoteToIndex> added;  // not stored yet
  while (goesOn) {
    std::vector<NoteToIndex> notes = nextUnknown(
        last, std::min<std::int64_t>(budget.notesAtOnce, sliceCapacity - builder.notes()));
    if (notes.empty()) break;
    last = notes.back().id;
    add(builder, notes, slice, added);
    added = std::move(notes);
    goesOn = !builder.isFull() && Clock::now() < deadline;
  }
  for (const NoteToIndex& note : added) store(note);
  if (builder.notes() == before) return false;
  removeSlice(connection_, slice);
  builder.write(connection_, slice);
  return !goesOn;
}

/// The positions of the notes that have not changed since the slice was written.
PositionSet SearchIndex::liveIn(std::int64_t slice) {
  sqlite::Query rows =
      connection_.query("SELECT searchRow FROM noteSummary WHERE searchRow BETWEEN ?1 AND ?2");
  rows.bind(1, slice * sliceCapacity).bind(2, (slice + 1) * sliceCapacity - 1);
  PositionSet live;
  while (rows.step()) live.add(static_cast<int>(rows.integer(0) % sliceCapacity));
  return live;
}

/// Whether a slice has entries of changed, deleted or locked notes. Counting takes half the time of
/// reading the positions.
bool SearchIndex::hasStale(std::int64_t slice) {
  sqlite::Query query = connection_.query(
      "SELECT notes <> (SELECT count(*) FROM noteSummary WHERE searchRow BETWEEN ?2 AND ?3) "
      "FROM searchSlice WHERE slice = ?1");
  query.bind(1, slice);
  query.bind(2, slice * sliceCapacity).bind(3, (slice + 1) * sliceCapacity - 1);
  return query.step() && query.integer(0) != 0;
}

/// Rewrites a slice without the entries of changed, deleted and locked notes. Returns false if it
/// has none.
bool SearchIndex::removeStale(std::int64_t slice) {
  if (!hasStale(slice)) return false;
  const PositionSet live = liveIn(slice);
  std::vector<std::pair<std::string, PositionSet>> entries;
  forEachEntry(connection_, slice, [&](std::string_view key, std::string_view positions) {
    PositionSet set = PositionSet::decoded(positions);
    set &= live;
    if (!set.isEmpty()) entries.emplace_back(key, set);
  });
  removeSlice(connection_, slice);
  if (live.isEmpty()) return true;
  SliceWriter writer(connection_, slice);
  for (const auto& [key, positions] : entries) {
    writer.add(key, PositionSet::Encoding(positions).bytes());
  }
  writer.finish(live.count());
  return true;
}

/// Removes the texts of deleted and locked notes, and outdated texts of other notes, from at least
/// one slice.
void SearchIndex::removeExpired(Clock::time_point deadline) {
  std::int64_t slice = number("SELECT value FROM counter WHERE name = 'unpurged'");
  if (slice == 0) return;
  bool removed = false;
  while (slice > 0 && !(removed && Clock::now() >= deadline)) {
    if (removeStale(slice)) removed = true;
    sqlite::Query next =
        connection_.query("SELECT ifnull(max(slice), 0) FROM searchSlice WHERE slice < ?1");
    next.bind(1, slice).step();
    slice = next.integer(0);
  }
  setCounter("unpurged", slice);
}

/// Removes outdated texts from the next slice that has any, in rotation. Gives up after
/// `mostLooked` slices without any.
void SearchIndex::removeNextStale() {
  constexpr int mostLooked = 16;
  std::int64_t first = 0;
  for (int looked = 0; looked < mostLooked; ++looked) {
    const std::int64_t slice = number(
        "SELECT ifnull((SELECT min(slice) FROM searchSlice "
        "WHERE slice > (SELECT value FROM counter WHERE name = 'purged')), "
        "(SELECT ifnull(min(slice), 0) FROM searchSlice))");
    if (slice == first) return;
    if (looked == 0) first = slice;
    setCounter("purged", slice);
    if (removeStale(slice)) return;
  }
}

void SearchIndex::setCounter(std::string_view name, std::int64_t value) {
  connection_.query("UPDATE counter SET value = ?2 WHERE name = ?1")
      .bind(1, name)
      .bind(2, value)
      .run();
}

/// Merges small slices into one of at most `whole` notes, if there are enough of them.
void SearchIndex::mergeSmall(std::int64_t whole) {
  std::vector<std::int64_t> slices;
  std::int64_t notes = 0;
  std::size_t small = 0;
  sqlite::Query query = connection_.query(
      "SELECT slice, notes FROM searchSlice WHERE notes < ?1 AND length(firsts) < ?2 "
      "ORDER BY notes, slice");
  query.bind(1, smallPart(whole)).bind(2, mostFirsts);
  for (; query.step(); ++small) {
    notes += query.integer(1);
    if (notes <= whole) slices.push_back(query.integer(0));
  }
  if (small > mostSmallSlices && slices.size() > 1) merge(slices);
}

/// Merges slices into a new one, using their entries and not the notes' texts.
void SearchIndex::merge(const std::vector<std::int64_t>& slices) {
  const std::int64_t merged = newSlice();
  SliceBuilder builder;
  for (const std::int64_t slice : slices) {
    SliceBuilder::Moves moved;
    moved.fill(-1);
    const PositionSet live = liveIn(slice);
    live.forEach(
        [&](int position) { moved[static_cast<std::size_t>(position)] = builder.addPosition(); });
    forEachEntry(connection_, slice, [&](std::string_view key, std::string_view positions) {
      builder.addEntry(key, positions, moved);
    });
    removeSlice(connection_, slice);
    live.forEach([&](int position) {
      sqlite::Query move =
          connection_.query("UPDATE noteSummary SET searchRow = ?2 WHERE searchRow = ?1");
      move.bind(1, slice * sliceCapacity + position);
      move.bind(2, merged * sliceCapacity + moved[static_cast<std::size_t>(position)]).run();
    });
  }
  if (builder.notes() > 0) builder.write(connection_, merged);
}

bool SearchIndex::bringUpToDate(TidyBudget budget) {
  const auto start = Clock::now();
  const auto deadline = start + std::chrono::milliseconds(budget.milliseconds);
  removeExpired(deadline);
  if (Clock::now() >= deadline) return true;
  if (!areUnknown(budget.fewestNotes)) return false;
  SliceBuilder builder;
  bool areLeft = true;
  while (areLeft) {
    // What is read is then also written to the slice, the log and the database.
    const auto readUntil = Clock::now() + (deadline - Clock::now()) * 3 / 5;
    areLeft = addNotes(builder, readUntil, budget);
    if (Clock::now() >= readUntil) break;
  }
  removeNextStale();
  if (Clock::now() < deadline) mergeSmall(budget.notesInSlice);
  return areLeft || Clock::now() >= deadline;
}

bool updateSearchIndex(sqlite::Connection& connection, TidyBudget budget) {
  return SearchIndex(connection).bringUpToDate(budget);
}

}  // namespace tavimodel
