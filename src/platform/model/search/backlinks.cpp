#include "platform/model/search/backlinks.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/model/storage/note_texts.h"
#include "platform/model/storage/schema.h"
#include "platform/model/storage/text_facts.h"
#include "platform/model/storage/title_keys.h"
#include "platform/text/folding.h"

namespace tavimodel {
namespace {

using Notes = std::vector<std::int64_t>;

/// Looks up notes by the titles in links, using the indexes of titles, and a map of the few notes
/// whose keys are not stored yet.
class TitleLookup {
 public:
  explicit TitleLookup(sqlite::Connection& connection) : connection_(connection) {
    sqlite::Query unknown = connection.query(
        fmt::format("SELECT note, title FROM noteSummary s WHERE {}", TitleSQL::keyUnknown));
    while (unknown.step()) {
      unknown_[platform::text::foldedForSearch(unknown.text(1))].push_back(unknown.integer(0));
    }
  }

  /// The notes whose keys are not stored, by folded title.
  const std::unordered_map<std::string, Notes>& unknown() const { return unknown_; }

  /// The notes that a folded link target names. The target may name a heading in the note,
  /// "Title/Heading", and titles may contain slashes: the longest matching title wins.
  const Notes& notesCalled(std::string_view target) {
    for (std::size_t length = target.size(); length != std::string::npos && length > 0;
         length = target.rfind('/', length - 1)) {
      const Notes& notes = notesWithTitle(target.substr(0, length));
      if (!notes.empty()) return notes;
    }
    return none_;
  }

 private:
  const Notes& notesWithTitle(std::string_view title) {
    const auto [known, isNew] = known_.try_emplace(std::string(title));
    if (!isNew) return known->second;
    Notes& notes = known->second;
    const std::string& key = known->first;
    sqlite::Query query = connection_.query(
        fmt::format("SELECT note FROM noteSummary s WHERE {}", TitleSQL::matches));
    query.bind(1, key);
    while (query.step()) notes.push_back(query.integer(0));
    if (const auto more = unknown_.find(key); more != unknown_.end())
      notes.insert(notes.end(), more->second.begin(), more->second.end());
    return notes;
  }

  sqlite::Connection& connection_;
  std::unordered_map<std::string, Notes> unknown_;
  std::unordered_map<std::string, Notes> known_;  // cache of look-ups, by folded title
  Notes none_;
};

/// Looks up notes by the keys of their titles, in one walk through the index of keys.
class KeysInOrder {
 public:
  explicit KeysInOrder(sqlite::Connection& connection)
      : query_(connection.query("SELECT titleKey, note FROM noteSummary "
                                "WHERE titleKey IS NOT NULL ORDER BY titleKey")),
        areLeft_(query_.step()) {}

  /// The notes with a key, which must not be less than the one before.
  const Notes& notesWith(std::string_view key) {
    if (!notes_.empty() && key == key_) return notes_;
    key_ = key;
    notes_.clear();
    for (; areLeft_ && query_.text(0) <= key; areLeft_ = query_.step()) {
      if (query_.text(0) == key) notes_.push_back(query_.integer(1));
    }
    return notes_;
  }

 private:
  sqlite::Query query_;
  bool areLeft_;
  std::string key_;  // the last one
  Notes notes_;      // that have it
};

}  // namespace

std::vector<std::int64_t> linkedNotes(sqlite::Connection& connection) {
  TitleLookup titles(connection);
  std::vector<std::int64_t> linked;
  const auto addAll = [&](std::int64_t from, const Notes& notes) {
    for (const std::int64_t note : notes) {
      if (note != from) linked.push_back(note);
    }
  };
  const auto add = [&](std::int64_t from, std::string_view target) {
    addAll(from, titles.notesCalled(target));
  };
  std::string unknown = fmt::format("(s.features IS NULL OR {})", FeatureSQL::wikiLinks);
  if (hasSearchIndex(connection)) {
    unknown = fmt::format("s.searchRow IS NULL AND (s.features IS NULL OR {})",
                          FeatureSQL::linksNotStored);
    // Sorted by title, so that consecutive look-ups hit the same page of the title index.
    sqlite::Query exact = connection.query(
        "SELECT l.note, l.target, s.note FROM noteLink l "
        "LEFT JOIN noteSummary s ON s.title = l.target COLLATE NOCASE ORDER BY l.target");
    KeysInOrder keys(connection);
    while (exact.step()) {
      const std::int64_t from = exact.integer(0);
      const std::string_view target = exact.text(1);
      addAll(from, keys.notesWith(target));
      if (!exact.isNull(2)) {
        if (exact.integer(2) != from) linked.push_back(exact.integer(2));
      } else if (target.find('/') != std::string_view::npos) {
        add(from, target);
      }
    }
    for (const auto& [key, notes] : titles.unknown()) {
      sqlite::Query links = connection.query("SELECT note FROM noteLink WHERE target = ?1");
      links.bind(1, key);
      while (links.step()) addAll(links.integer(0), notes);
    }
  }
  sqlite::Query texts = connection.query(
      fmt::format("SELECT note.id, {} FROM noteSummary s JOIN note ON note.id = s.note "
                  "WHERE s.encrypted = 0 AND ifnull(s.permanentlyDeleted, 0) = 0 AND {}",
                  readableText, unknown));
  while (texts.step()) {
    for (const std::string& target : TextFacts::of(texts.text(1)).links) {
      add(texts.integer(0), target);
    }
  }
  std::sort(linked.begin(), linked.end());
  linked.erase(std::unique(linked.begin(), linked.end()), linked.end());
  return linked;
}

}  // namespace tavimodel
