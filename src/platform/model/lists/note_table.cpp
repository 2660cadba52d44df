#include "platform/model/lists/note_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>

#include "platform/model/storage/note_texts.h"
#include "platform/model/storage/text_facts.h"
#include "platform/text/ordering.h"

namespace tavimodel {
namespace {

/// Where a walk over a whole relation is cheaper than a look-up for each note.
constexpr std::size_t walkFrom = 400;

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

  /// Our notes, ascending.
  std::vector<std::int64_t> ids() const {
    std::vector<std::int64_t> ids;
    ids.reserve(byID_.size());
    for (const std::size_t row : byID_) ids.push_back(rows_[row].id);
    return ids;
  }

  /// Gives a name to one of our notes. Notes come by ascending id.
  void give(std::int64_t note, std::string_view name) {
    while (rows_[byID_[next_]].id < note) ++next_;
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

/// Runs over the rows of `relation` that belong to the notes, given ascending, by ascending note:
/// visit(note, query), with the columns from 1 on.
template <class Visit>
void forEachRelated(sqlite::Connection& connection, const std::vector<std::int64_t>& notes,
                    std::string_view columns, std::string_view relation, std::string_view order,
                    Visit visit) {
  const bool walk = notes.size() >= walkFrom;
  const std::string sql = fmt::format("SELECT note, {} FROM {}{} ORDER BY {}", columns, relation,
                                      walk ? "" : " WHERE note = ?1", order);
  if (walk) {
    sqlite::Query query = connection.query(sql);
    auto wanted = notes.begin();
    while (query.step()) {
      const std::int64_t note = query.integer(0);
      while (wanted != notes.end() && *wanted < note) ++wanted;
      if (wanted == notes.end()) return;
      if (*wanted == note) visit(note, query);
    }
    return;
  }
  for (const std::int64_t note : notes) {
    sqlite::Query query = connection.query(sql);
    query.bind(1, note);
    while (query.step()) visit(note, query);
  }
}

/// Names of tags, each read once however many notes carry it, and put in order once.
class TagNames {
 public:
  /// All there are, or those asked for one by one later.
  void readAll(sqlite::Connection& connection, StringArena& arena) {
    sqlite::Query query = connection.query("SELECT id, title FROM tag");
    while (query.step()) add(query.integer(0), arena.keep(query.text(1)));
  }

  void read(std::int64_t tag, sqlite::Connection& connection, StringArena& arena) {
    if (byID_.contains(tag)) return;
    sqlite::Query query = connection.query("SELECT title FROM tag WHERE id = ?1");
    query.bind(1, tag);
    if (query.step()) add(tag, arena.keep(query.text(0)));
  }

  void putInOrder() {
    std::sort(names_.begin(), names_.end(), [](const Name& a, const Name& b) {
      return platform::text::CodePointLess()(a.text, b.text);
    });
    for (std::uint32_t rank = 0; rank < names_.size(); ++rank) byID_[names_[rank].tag] = rank;
  }

  /// By code points; nothing for a tag that is gone.
  std::optional<std::uint32_t> rank(std::int64_t tag) const {
    const auto found = byID_.find(tag);
    if (found == byID_.end()) return std::nullopt;
    return found->second;
  }
  std::string_view operator[](std::uint32_t rank) const { return names_[rank].text; }

 private:
  struct Name {
    std::int64_t tag;
    std::string_view text;
  };
  void add(std::int64_t tag, std::string_view text) {
    byID_.emplace(tag, 0);
    names_.push_back({tag, text});
  }

  std::vector<Name> names_;
  std::unordered_map<std::int64_t, std::uint32_t> byID_;
};

}  // namespace

std::string_view NoteTable::columns() const {
  constexpr std::string_view all =
      "s.note, s.uniqueIdentifier, s.title, s.creationDate, s.modificationDate, s.place, "
      "s.pinned, s.encrypted, s.textDigest, s.textLength, s.todoIncomplete, "
      "s.todoCompleted";
  return detailed_ ? all : all.substr(0, all.find(", s.textDigest"));
}

void NoteTable::add(const sqlite::Query& query) {
  NoteView& row = rows_.emplace_back();
  row.id = query.integer(0);
  row.uniqueIdentifier = arena_.keep(query.text(1));
  row.title = arena_.keep(query.text(2));
  row.creationDate = query.optionalReal(3);
  row.modificationDate = query.optionalReal(4);
  const std::int64_t place = query.integer(5);
  row.trashed = (place & 4) != 0;
  row.archived = (place & 2) != 0;
  row.pinned = query.integer(6) != 0;
  row.encrypted = query.integer(7) != 0;
  if (!detailed_) return;
  row.digest = arena_.keep(query.text(8));
  row.length = query.integer(9);
  row.todoIncomplete = query.integer(10);
  row.todoCompleted = query.integer(11);
}

void NoteTable::loadRelations(sqlite::Connection& connection) {
  if (rows_.empty()) return;
  loadTags(connection);
  if (!detailed_) return;
  loadPins(connection);
  loadFiles(connection);
  loadFacts(connection);
}

void NoteTable::loadTags(sqlite::Connection& connection) {
  struct Use {
    std::int64_t note, tag;
  };
  std::vector<Use> uses;
  uses.reserve(2 * rows_.size());
  Distribution tags(rows_, tags_, &NoteView::tags);
  forEachRelated(connection, tags.ids(), "tag", "noteTag", "note, tag",
                 [&](std::int64_t note, const sqlite::Query& related) {
                   uses.push_back({note, related.integer(1)});
                 });
  TagNames names;
  if (uses.size() >= walkFrom) {
    names.readAll(connection, arena_);
  } else {
    for (const Use& use : uses) names.read(use.tag, connection, arena_);
  }
  names.putInOrder();

  std::vector<std::uint32_t> ranks;
  for (auto use = uses.begin(); use != uses.end();) {
    const std::int64_t note = use->note;
    ranks.clear();
    for (; use != uses.end() && use->note == note; ++use) {
      if (const auto rank = names.rank(use->tag)) ranks.push_back(*rank);
    }
    std::sort(ranks.begin(), ranks.end());
    for (const std::uint32_t rank : ranks) tags.give(note, names[rank]);
  }
  tags.finish();
}

void NoteTable::loadPins(sqlite::Connection& connection) {
  Distribution pins(rows_, pins_, &NoteView::pinnedInTags);
  forEachRelated(connection, pins.ids(), "(SELECT title FROM tag WHERE id = tag)", "pinnedInTag",
                 "note", [&](std::int64_t note, const sqlite::Query& related) {
                   if (!related.isNull(1)) pins.give(note, arena_.keep(related.text(1)));
                 });
  pins.finish();
}

void NoteTable::loadFiles(sqlite::Connection& connection) {
  Distribution files(rows_, filenames_, &NoteView::filenames);
  forEachRelated(connection, files.ids(), "filename", "file", "note, position, id",
                 [&](std::int64_t note, const sqlite::Query& related) {
                   if (!related.isNull(1)) files.give(note, arena_.keep(related.text(1)));
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
  tavimodel::forEachText(connection, ids, [&](std::size_t index, std::string_view text) {
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
  tavimodel::forEachText(connection, ids, visit);
}

}  // namespace tavimodel
