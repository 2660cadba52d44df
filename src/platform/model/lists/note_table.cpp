#include "platform/model/lists/note_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <optional>
#include <string>

#include "platform/model/lists/tag_names.h"
#include "platform/model/storage/note_texts.h"
#include "platform/model/storage/text_facts.h"

namespace tavimodel {
namespace {

/// Whether scanning a whole relation is cheaper than a look-up for each of `notes` notes.
bool isWalkCheaper(sqlite::Connection& connection, std::size_t notes) {
  constexpr std::size_t few = 400;
  constexpr std::int64_t stepsForALookUp = 8;
  if (notes < few) return false;
  sqlite::Query all = connection.query("SELECT max(note) FROM noteSummary");
  all.step();
  return static_cast<std::int64_t>(notes) * stepsForALookUp >= all.integer(0);
}

/// Finds rows by ascending ids.
class RowsByID {
 public:
  /// `byID`: indices into `rows`, in the order of ids. Both must outlive this object.
  RowsByID(const std::vector<ListedRow>& rows, const std::vector<std::uint32_t>& byID)
      : rows_(rows), next_(byID.begin()), end_(byID.end()) {}

  /// The index of the row with that id, which is not below those asked for before.
  std::optional<std::uint32_t> at(std::int64_t id) {
    while (next_ != end_ && rows_[*next_].id < id) ++next_;
    return next_ != end_ && rows_[*next_].id == id ? std::optional(*next_) : std::nullopt;
  }

 private:
  const std::vector<ListedRow>& rows_;
  std::vector<std::uint32_t>::const_iterator next_, end_;
};

/// Calls `visit(index, query)` for each row of `relation` that belongs to one of the notes, with an
/// index into `rows` and a query whose columns begin at 1. Visits note by note, in the order of
/// `byID`.
template <class Visit>
void forEachRelated(sqlite::Connection& connection, const std::vector<ListedRow>& rows,
                    const std::vector<std::uint32_t>& byID, std::string_view columns,
                    std::string_view relation, std::string_view order, Visit visit) {
  const bool walk = isWalkCheaper(connection, rows.size());
  const std::string sql = fmt::format("SELECT note, {} FROM {}{} ORDER BY {}", columns, relation,
                                      walk ? "" : " WHERE note = ?1", order);
  sqlite::Query query = connection.query(sql);
  if (walk) {
    RowsByID wanted(rows, byID);
    while (query.step()) {
      if (const auto row = wanted.at(query.integer(0))) visit(*row, query);
    }
    return;
  }
  for (const std::uint32_t row : byID) {
    query.reset().bind(1, rows[row].id);
    while (query.step()) visit(row, query);
  }
}

/// Appends a name to the part of `names` that belongs to one note. All names of a note must be
/// appended in sequence.
template <class Part>
void append(std::vector<std::string_view>& names, Part& part, std::string_view name) {
  if (part.count++ == 0) part.first = static_cast<std::uint32_t>(names.size());
  names.push_back(name);
}

}  // namespace

std::string_view NoteTable::columns() const {
  constexpr std::string_view all =
      "s.note, s.uniqueIdentifier, s.title, s.creationDate, s.modificationDate, s.place, "
      "s.pinned, s.encrypted, s.textDigest, s.textLength, s.todoIncomplete, "
      "s.todoCompleted";
  return detailed_ ? all : all.substr(0, all.find(", s.textDigest"));
}

void NoteTable::reserve(std::size_t notes) {
  rows_.reserve(notes);
  if (detailed_) details_.reserve(notes);
}

template <class Row>
void NoteTable::addRow(const Row& query) {
  constexpr double absent = std::numeric_limits<double>::quiet_NaN();
  ListedRow& row = rows_.emplace_back();
  row.id = query.integer(0);
  const std::string_view identifier = query.text(1);
  const std::string_view title = query.text(2);
  row.texts = arena_.keep(identifier, title);
  row.identifierLength = static_cast<std::uint32_t>(identifier.size());
  row.titleLength = static_cast<std::uint32_t>(title.size());
  row.created = query.optionalReal(3).value_or(absent);
  row.modified = query.optionalReal(4).value_or(absent);
  const std::int64_t place = query.integer(5);
  row.trashed = (place & 4) != 0;
  row.archived = (place & 2) != 0;
  row.pinned = query.integer(6) != 0;
  row.encrypted = query.integer(7) != 0;
  if (!detailed_) return;
  Details& details = details_.emplace_back();
  details.digest = arena_.keep(query.text(8));
  details.length = query.integer(9);
  details.todoIncomplete = query.integer(10);
  details.todoCompleted = query.integer(11);
}

template void NoteTable::addRow(const sqlite::Query&);
template void NoteTable::addRow(const sqlite::Row&);

void NoteTable::loadRelations(sqlite::Connection& connection) {
  if (rows_.empty()) return;
  loadTags(connection);
  if (!detailed_) return;
  loadPins(connection);
  loadFiles(connection);
  loadFacts(connection);
}

std::vector<std::uint32_t> NoteTable::rowsByID() const {
  std::vector<std::uint32_t> byID(rows_.size());
  std::iota(byID.begin(), byID.end(), std::uint32_t{0});
  const auto less = [&](std::uint32_t a, std::uint32_t b) { return rows_[a].id < rows_[b].id; };
  if (!std::is_sorted(byID.begin(), byID.end(), less)) std::sort(byID.begin(), byID.end(), less);
  return byID;
}

void NoteTable::loadTags(sqlite::Connection& connection) {
  TagNames names(connection, arena_);
  tags_.reserve(2 * rows_.size());
  const auto append = [&](std::uint32_t index, std::int64_t tag) {
    const auto number = names.numberOf(tag);
    if (!number) return;
    ListedRow& row = rows_[index];
    if (row.tagCount++ == 0) row.firstTag = static_cast<std::uint32_t>(tags_.size());
    tags_.push_back(*number);
  };
  const std::vector<std::uint32_t> byID = rowsByID();
  if (isWalkCheaper(connection, rows_.size())) {
    names.readAll();
    RowsByID wanted(rows_, byID);
    // By its primary key, so that a note's tags come one after the other.
    connection
        .query("SELECT visitRow(note, tag) FROM noteTag INDEXED BY sqlite_autoindex_noteTag_1")
        .visit([&](const sqlite::Row& related) {
          if (const auto row = wanted.at(related.integer(0))) append(*row, related.integer(1));
        });
  } else {
    forEachRelated(
        connection, rows_, byID, "tag", "noteTag", "note",
        [&](std::uint32_t row, const sqlite::Query& related) { append(row, related.integer(1)); });
  }
  const std::vector<std::uint32_t> ranks = names.sort();
  for (std::uint32_t& tag : tags_) tag = ranks[tag];
  for (const ListedRow& row : rows_) {
    if (row.tagCount < 2) continue;
    const auto first = tags_.begin() + row.firstTag;
    std::sort(first, first + row.tagCount);
  }
  tagNames_ = names.names();
}

void NoteTable::loadPins(sqlite::Connection& connection) {
  forEachRelated(connection, rows_, rowsByID(), "(SELECT title FROM tag WHERE id = tag)",
                 "pinnedInTag", "note", [&](std::uint32_t row, const sqlite::Query& related) {
                   if (related.isNull(1)) return;
                   append(pins_, details_[row].pins, arena_.keep(related.text(1)));
                 });
}

void NoteTable::loadFiles(sqlite::Connection& connection) {
  forEachRelated(connection, rows_, rowsByID(), "filename", "file", "note, position, id",
                 [&](std::uint32_t row, const sqlite::Query& related) {
                   if (related.isNull(1)) return;
                   append(filenames_, details_[row].files, arena_.keep(related.text(1)));
                 });
}

void NoteTable::loadFacts(sqlite::Connection& connection) {
  std::vector<std::size_t> unknown;
  std::vector<std::int64_t> ids;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (!details_[i].digest.empty() || rows_[i].encrypted) continue;
    unknown.push_back(i);
    ids.push_back(rows_[i].id);
  }
  if (ids.empty()) return;
  tavimodel::forEachText(connection, ids, [&](std::size_t index, std::string_view text) {
    const TextFacts facts = TextFacts::of(text);
    Details& details = details_[unknown[index]];
    details.digest = arena_.keep(facts.digest);
    details.length = facts.length;
    details.todoIncomplete = facts.todoIncomplete;
    details.todoCompleted = facts.todoCompleted;
  });
}

void NoteTable::setOrder(std::vector<std::uint32_t> order) {
  order_ = std::move(order);
  ordered_ = true;
}

/// Starts to load the data of the next rows: an ordered list jumps back and forth in memory. GCC
/// would remove a call of it, which has no effect, so it is inlined.
[[gnu::always_inline]] inline void NoteTable::prefetchAfter(std::size_t index) const {
  constexpr std::size_t distance = 8;
  const std::size_t near = index + distance;
  if (!ordered_ || near + distance >= order_.size()) return;
  __builtin_prefetch(&rows_[order_[near + distance]]);
  const ListedRow& row = rows_[order_[near]];
  for (std::uint32_t line = 0; line < row.identifierLength + row.titleLength; line += 64) {
    __builtin_prefetch(row.texts + line);
  }
  if (row.tagCount > 0) __builtin_prefetch(&tags_[row.firstTag]);
}

NoteView NoteTable::note(std::size_t index, std::vector<std::string_view>& tags) const {
  prefetchAfter(index);
  const ListedRow& row = rows_[rowAt(index)];
  tags.clear();
  for (std::uint32_t i = 0; i < row.tagCount; ++i) {
    tags.push_back(tagNames_[tags_[row.firstTag + i]]);
  }
  NoteView note;
  note.id = row.id;
  note.uniqueIdentifier = row.uniqueIdentifier();
  note.title = row.title();
  note.creationDate = ListedRow::date(row.created);
  note.modificationDate = ListedRow::date(row.modified);
  note.trashed = row.trashed;
  note.archived = row.archived;
  note.pinned = row.pinned;
  note.encrypted = row.encrypted;
  note.tags = tags;
  if (!detailed_) return note;
  const Details& details = details_[rowAt(index)];
  note.digest = details.digest;
  note.length = details.length;
  note.todoIncomplete = details.todoIncomplete;
  note.todoCompleted = details.todoCompleted;
  note.pinnedInTags = {pins_.data() + details.pins.first, details.pins.count};
  note.filenames = {filenames_.data() + details.files.first, details.files.count};
  return note;
}

void NoteTable::forEachText(sqlite::Connection& connection,
                            const std::function<void(std::size_t, std::string_view)>& visit) const {
  std::vector<std::int64_t> ids;
  ids.reserve(size());
  for (std::size_t i = 0; i < size(); ++i) ids.push_back(rows_[rowAt(i)].id);
  tavimodel::forEachText(connection, ids, visit);
}

}  // namespace tavimodel
