#include "platform/model/note_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>

#include "platform/model/note_reader.h"
#include "platform/model/text_facts.h"

namespace tavimodel {
namespace {

/// Where a walk over a whole relation is cheaper than a look-up for each note.
constexpr std::size_t walkFrom = 400;

std::vector<std::int64_t> idsOf(const std::vector<NoteView>& rows) {
  std::vector<std::int64_t> ids;
  ids.reserve(rows.size());
  for (const NoteView& row : rows) ids.push_back(row.id);
  return ids;
}

/// Hands the rows of one relation, which come by ascending note, out to the notes: each note gets
/// a span of one flat list of names.
class Distribution {
 public:
  using Member = std::span<const std::string_view> NoteView::*;

  Distribution(std::vector<NoteView>& rows, std::vector<std::string_view>& names, Member member)
      : rows_(rows), names_(names), member_(member), byID_(rows.size()) {
    std::iota(byID_.begin(), byID_.end(), std::size_t{0});
    const auto less = [&](std::size_t a, std::size_t b) { return rows[a].id < rows[b].id; };
    if (!std::is_sorted(byID_.begin(), byID_.end(), less)) {
      std::sort(byID_.begin(), byID_.end(), less);
    }
    counts_.resize(rows.size());
  }

  /// Whether the note is one of ours.
  bool isWanted(std::int64_t note) {
    while (next_ < byID_.size() && rows_[byID_[next_]].id < note) ++next_;
    return next_ < byID_.size() && rows_[byID_[next_]].id == note;
  }

  /// Gives a name to the note that was asked for last.
  void give(std::string_view name) {
    names_.push_back(name);
    ++counts_[next_];
  }

  /// The spans, now that the list does not grow any more.
  void finish() {
    const std::string_view* begin = names_.data();
    for (std::size_t i = 0; i < byID_.size(); ++i) {
      rows_[byID_[i]].*member_ = {begin, counts_[i]};
      begin += counts_[i];
    }
  }

 private:
  std::vector<NoteView>& rows_;
  std::vector<std::string_view>& names_;
  Member member_;
  std::vector<std::size_t> byID_;
  std::vector<std::uint32_t> counts_;
  std::size_t next_ = 0;
};

/// Runs over the rows of `relation` that belong to the notes, by ascending note.
template <class Visit>
void forEachRelated(sqlite::Connection& connection, const std::vector<NoteView>& notes,
                    std::string_view columns, std::string_view relation, std::string_view order,
                    Visit visit) {
  const bool many = notes.size() >= walkFrom;
  sqlite::Query query = connection.query(
      fmt::format("SELECT {} FROM {} {} ORDER BY {}", columns, relation,
                  many ? "" : "WHERE note IN (SELECT value FROM json_each(?1))", order));
  const std::string ids = many ? std::string() : jsonArray(idsOf(notes));
  if (!many) query.bind(1, ids);
  while (query.step()) visit(query);
}

}  // namespace

const std::string_view NoteTable::columns =
    "s.note, s.uniqueIdentifier, s.title, s.creationDate, s.modificationDate, s.trashed, "
    "s.archived, s.pinned, s.encrypted, s.textDigest, s.textLength, s.todoIncomplete, "
    "s.todoCompleted";

void NoteTable::add(const sqlite::Query& query) {
  NoteView& row = rows_.emplace_back();
  row.id = query.integer(0);
  row.uniqueIdentifier = arena_.keep(query.text(1));
  row.title = arena_.keep(query.text(2));
  row.creationDate = query.optionalReal(3);
  row.modificationDate = query.optionalReal(4);
  row.trashed = query.integer(5) != 0;
  row.archived = query.integer(6) != 0;
  row.pinned = query.integer(7) != 0;
  row.encrypted = query.integer(8) != 0;
  row.digest = arena_.keep(query.text(9));
  row.length = query.integer(10);
  row.todoIncomplete = query.integer(11);
  row.todoCompleted = query.integer(12);
}

void NoteTable::loadRelations(sqlite::Connection& connection) {
  if (rows_.empty()) return;
  loadTags(connection);
  loadPins(connection);
  loadFiles(connection);
  loadFacts(connection);
}

void NoteTable::loadTags(sqlite::Connection& connection) {
  // Titles apart from the relation: a tag's name is read once, and not once a note.
  std::unordered_map<std::int64_t, std::string_view> titles;
  sqlite::Query query = connection.query("SELECT id, title FROM tag");
  while (query.step()) titles.emplace(query.integer(0), arena_.keep(query.text(1)));
  if (titles.empty()) return;
  Distribution tags(rows_, tags_, &NoteView::tags);
  forEachRelated(connection, rows_, "note, tag", "noteTag", "note, tag",
                 [&](const sqlite::Query& related) {
                   if (!tags.isWanted(related.integer(0))) return;
                   const auto title = titles.find(related.integer(1));
                   if (title != titles.end()) tags.give(title->second);
                 });
  tags.finish();
}

void NoteTable::loadPins(sqlite::Connection& connection) {
  Distribution pins(rows_, pins_, &NoteView::pinnedInTags);
  forEachRelated(connection, rows_, "note, (SELECT title FROM tag WHERE id = tag)", "pinnedInTag",
                 "note", [&](const sqlite::Query& related) {
                   if (related.isNull(1) || !pins.isWanted(related.integer(0))) return;
                   pins.give(arena_.keep(related.text(1)));
                 });
  pins.finish();
}

void NoteTable::loadFiles(sqlite::Connection& connection) {
  Distribution files(rows_, filenames_, &NoteView::filenames);
  forEachRelated(connection, rows_, "note, filename", "file", "note, position, id",
                 [&](const sqlite::Query& related) {
                   if (related.isNull(1) || !files.isWanted(related.integer(0))) return;
                   files.give(arena_.keep(related.text(1)));
                 });
  files.finish();
}

void NoteTable::loadFacts(sqlite::Connection& connection) {
  std::vector<std::size_t> unknown;
  std::vector<std::int64_t> ids;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (!rows_[i].digest.empty() || rows_[i].encrypted) continue;
    unknown.push_back(i);
    ids.push_back(rows_[i].id);
  }
  if (ids.empty()) return;
  NoteReader(connection).forEachText(ids, [&](std::size_t index, std::string_view text) {
    const TextFacts facts = TextFacts::of(text);
    NoteView& row = rows_[unknown[index]];
    row.digest = arena_.keep(facts.digest);
    row.length = facts.length;
    row.todoIncomplete = facts.todoIncomplete;
    row.todoCompleted = facts.todoCompleted;
  });
}

void NoteTable::setOrder(std::vector<std::size_t> order) {
  order_ = std::move(order);
  ordered_ = true;
}

void NoteTable::forEachText(sqlite::Connection& connection,
                            const std::function<void(std::size_t, std::string_view)>& visit) const {
  std::vector<std::int64_t> ids;
  ids.reserve(size());
  for (std::size_t i = 0; i < size(); ++i) ids.push_back((*this)[i].id);
  NoteReader(connection).forEachText(ids, visit);
}

}  // namespace tavimodel
