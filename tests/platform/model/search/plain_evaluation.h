#pragma once

#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/markdown/ast.h"
#include "platform/model/search/search_query.h"
#include "platform/text/folding.h"
#include "platform/text/string_search.h"
#include "platform/text/utf8.h"
#include "support/foreign_client.h"

/// A reference implementation of searches: reads every note with plain SQL, and evaluates the
/// query's tree in memory.
namespace tavimodel {

/// All data of a note, from the tables that any program can read.
struct PlainNote {
  std::int64_t id = 0;
  std::string identifier, title, text;
  std::optional<double> modified, created;
  bool trashed = false, archived = false, deleted = false, pinned = false;
  bool locked = false, readOnly = false, isLinked = false;
  std::set<std::string> tags;
  std::vector<std::pair<std::string, std::string>> files;  ///< names, and the texts recognised
  zephyrdown::ZDKTextSummary summary;                      ///< empty for a locked note
};

/// Calls a function for each row of a SELECT.
class Rows {
 public:
  Rows(const support::ForeignClient& client, const char* sql) {
    sqlite3_prepare_v2(client.handle(), sql, -1, &statement_, nullptr);
  }
  ~Rows() { sqlite3_finalize(statement_); }
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;

  bool next() { return sqlite3_step(statement_) == SQLITE_ROW; }
  std::int64_t integer(int column) const { return sqlite3_column_int64(statement_, column); }
  std::string text(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return bytes == nullptr ? std::string() : std::string(bytes, size);
  }
  std::optional<double> real(int column) const {
    if (sqlite3_column_type(statement_, column) == SQLITE_NULL) return std::nullopt;
    return sqlite3_column_double(statement_, column);
  }

 private:
  sqlite3_stmt* statement_ = nullptr;
};

class PlainNotes {
 public:
  explicit PlainNotes(const support::ForeignClient& client) {
    readNotes(client);
    for (Rows rows(client, "SELECT note, title FROM noteTag JOIN tag ON tag.id = tag");
         rows.next();)
      if (PlainNote* note = find(rows.integer(0))) note->tags.insert(rows.text(1));
    for (Rows rows(client, "SELECT note, filename, ocrText FROM file"); rows.next();)
      if (PlainNote* note = find(rows.integer(0)))
        note->files.emplace_back(rows.text(1), rows.text(2));
    for (const auto& [id, note] : notes_) followLinks(note);
  }

  const std::map<std::int64_t, PlainNote>& all() const { return notes_; }

 private:
  void readNotes(const support::ForeignClient& client) {
    Rows rows(client,
              "SELECT id, uniqueIdentifier, title, text, modificationDate, creationDate, trashed, "
              "archived, permanentlyDeleted, pinned, encrypted, readOnly FROM note");
    while (rows.next()) {
      PlainNote note{rows.integer(0), rows.text(1), rows.text(2),
                     rows.text(3),    rows.real(4), rows.real(5)};
      note.trashed = rows.integer(6) != 0;
      note.archived = rows.integer(7) != 0;
      note.deleted = rows.integer(8) != 0;
      note.pinned = rows.integer(9) != 0;
      note.locked = rows.integer(10) != 0;
      note.readOnly = rows.integer(11) != 0;
      if (!note.locked) note.summary = zephyrdown::ZDKAST::fromMarkdown(note.text).textSummary();
      notes_.emplace(note.id, std::move(note));
    }
  }

  PlainNote* find(std::int64_t id) {
    const auto found = notes_.find(id);
    return found == notes_.end() ? nullptr : &found->second;
  }

  /// Of "[[Title/Heading]]", the longest existing title counts.
  void followLinks(const PlainNote& from) {
    if (from.deleted) return;
    for (std::string target : from.summary.wikiLinks) {
      while (!markLinked(from, target) && target.find('/') != std::string::npos) {
        target.resize(target.rfind('/'));
      }
    }
  }

  bool markLinked(const PlainNote& from, const std::string& title) {
    bool exists = false;
    for (auto& [id, note] : notes_) {
      if (platform::text::foldedForSearch(note.title) != platform::text::foldedForSearch(title))
        continue;
      exists = true;
      if (id != from.id) note.isLinked = true;
    }
    return exists;
  }

  std::map<std::int64_t, PlainNote> notes_;
};

/// Evaluates a query's tree for one note at a time.
class Evaluation {
 public:
  explicit Evaluation(const SearchQuery& query) : query_(query) {
    for (const auto& group : query.groups) {
      for (const SearchCondition& condition : group) {
        terms_.try_emplace(condition.text, condition.text, platform::text::CaseFolding::full);
      }
    }
  }

  bool finds(const PlainNote& note) const {
    return std::all_of(query_.groups.begin(), query_.groups.end(), [&](const auto& group) {
      return std::any_of(group.begin(), group.end(), [&](const SearchCondition& condition) {
        return holds(condition, note) != condition.negated;
      });
    });
  }

 private:
  bool holdsTerm(const platform::text::StringSearch& term, const PlainNote& note) const {
    if (query_.ocrOnly) {
      return !query_.titlesOnly && !note.locked &&
             std::any_of(note.files.begin(), note.files.end(),
                         [&](const auto& file) { return term.isIn(file.second); });
    }
    if (term.isIn(note.title)) return true;
    return !query_.titlesOnly && !note.locked && term.isIn(note.text);
  }

  static bool holdsTag(const SearchCondition& condition, const std::string& tag) {
    const std::string& name = condition.text;
    if (condition.kind == SearchCondition::Kind::exactTag) return tag == name;
    if (condition.kind == SearchCondition::Kind::tag)
      return tag == name || tag.starts_with(name + "/");
    return tag != name && ("/" + tag + "/").find("/" + name + "/") != std::string::npos;
  }

  static bool isWithin(const SearchCondition& condition, const std::optional<double>& date) {
    return date && (!condition.from || *date >= *condition.from) &&
           (!condition.to || *date < *condition.to);
  }

  bool holds(const SearchCondition& condition, const PlainNote& note) const {
    const auto& summary = note.summary;
    const auto hasFile = [&](auto test) {
      return !note.locked && std::any_of(note.files.begin(), note.files.end(), test);
    };
    using Kind = SearchCondition::Kind;
    switch (condition.kind) {
      case Kind::term:
        return holdsTerm(terms_.at(condition.text), note);
      case Kind::tag:
      case Kind::exactTag:
      case Kind::subtag:
        return std::any_of(note.tags.begin(), note.tags.end(),
                           [&](const auto& tag) { return holdsTag(condition, tag); });
      case Kind::modified:
        return isWithin(condition, note.modified);
      case Kind::created:
        return isWithin(condition, note.created);
      case Kind::todo:
        return summary.todoIncomplete > 0;
      case Kind::done:
        return summary.todoIncomplete == 0 && summary.todoCompleted > 0;
      case Kind::task:
        return summary.todoIncomplete + summary.todoCompleted > 0;
      case Kind::tagged:
        return !note.tags.empty();
      case Kind::untagged:
        return note.tags.empty();
      case Kind::pinned:
        return note.pinned;
      case Kind::images:
        return summary.hasImages;
      case Kind::files:
        return hasFile([](const auto& file) { return !file.first.ends_with(".png"); });
      case Kind::attachments:
        return hasFile([](const auto&) { return true; });
      case Kind::code:
        return summary.hasCode;
      case Kind::locked:
        return note.locked;
      case Kind::readOnly:
        return note.readOnly;
      case Kind::empty:
        return !note.locked && platform::text::trimmingWhitespaceAndNewlines(note.text).empty();
      case Kind::untitled:
        return note.title.empty();
      case Kind::wikiLinks:
        return !summary.wikiLinks.empty();
      case Kind::backlinks:
        return note.isLinked;
      case Kind::ocr:
        return hasFile([](const auto& file) { return !file.second.empty(); });
    }
    return false;
  }

  const SearchQuery& query_;
  std::map<std::string, platform::text::StringSearch> terms_;
};

}  // namespace tavimodel
