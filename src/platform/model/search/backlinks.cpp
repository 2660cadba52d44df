#include "platform/model/search/backlinks.h"

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/markdown/ast.h"
#include "platform/model/storage/note_texts.h"
#include "platform/model/storage/text_facts.h"
#include "platform/text/folding.h"

namespace tavimodel {
namespace {

using Notes = std::vector<std::int64_t>;

/// Looks notes up by their titles, as links have them: by the index of folded titles, and among the
/// few whose folded titles are not known yet.
class TitleLookup {
 public:
  explicit TitleLookup(sqlite::Connection& connection) : connection_(connection) {
    sqlite::Query unknown = connection.query(
        "SELECT note, title FROM noteSummary WHERE searchRow IS NULL AND titleKey IS NULL");
    while (unknown.step()) {
      unknown_[platform::text::foldedForSearch(unknown.text(1))].push_back(unknown.integer(0));
    }
  }

  /// The notes that a link names. It may name a heading inside the note, "Title/Heading", and a
  /// title may have slashes: the longest title counts.
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
    const auto [known, isNew] = known_.try_emplace(platform::text::foldedForSearch(title));
    if (!isNew) return known->second;
    Notes& notes = known->second;
    const std::string& key = known->first;
    sqlite::Query query = connection_.query("SELECT note FROM noteSummary WHERE titleKey = ?1");
    query.bind(1, key);
    while (query.step()) notes.push_back(query.integer(0));
    if (const auto more = unknown_.find(key); more != unknown_.end())
      notes.insert(notes.end(), more->second.begin(), more->second.end());
    return notes;
  }

  sqlite::Connection& connection_;
  std::unordered_map<std::string, Notes> unknown_;
  std::unordered_map<std::string, Notes> known_;  // what has been looked up, by folded title
  Notes none_;
};

}  // namespace

std::vector<std::int64_t> linkedNotes(sqlite::Connection& connection) {
  TitleLookup titles(connection);
  std::vector<std::int64_t> linked;
  sqlite::Query texts = connection.query(
      fmt::format("SELECT note.id, {} FROM noteSummary s JOIN note ON note.id = s.note "
                  "WHERE s.encrypted = 0 AND ifnull(s.permanentlyDeleted, 0) = 0 "
                  "AND (s.features IS NULL OR (s.features & {}) <> 0)",
                  readableText, static_cast<std::int64_t>(TextFacts::wikiLinks)));
  while (texts.step()) {
    const auto summary = zephyrdown::ZDKAST::fromMarkdown(std::string(texts.text(1))).textSummary();
    for (const std::string& target : summary.wikiLinks) {
      for (const std::int64_t note : titles.notesCalled(target)) {
        if (note != texts.integer(0)) linked.push_back(note);
      }
    }
  }
  return linked;
}

}  // namespace tavimodel
