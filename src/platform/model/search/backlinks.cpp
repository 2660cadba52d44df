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

using NotesByTitle = std::unordered_map<std::string, std::vector<std::int64_t>>;

NotesByTitle notesByTitle(sqlite::Connection& connection) {
  NotesByTitle notes;
  sqlite::Query titles = connection.query("SELECT note, title FROM noteSummary");
  while (titles.step()) {
    notes[platform::text::foldedForSearch(titles.text(1))].push_back(titles.integer(0));
  }
  return notes;
}

/// The notes called `target`. It may name a heading inside the note, "Title/Heading", and a title
/// may have slashes: the longest title counts. Null for none.
const std::vector<std::int64_t>* notesCalled(std::string_view target, const NotesByTitle& notes) {
  for (std::size_t length = target.size(); length != std::string::npos && length > 0;
       length = target.rfind('/', length - 1)) {
    const auto found = notes.find(platform::text::foldedForSearch(target.substr(0, length)));
    if (found != notes.end()) return &found->second;
  }
  return nullptr;
}

}  // namespace

std::vector<std::int64_t> linkedNotes(sqlite::Connection& connection) {
  const NotesByTitle notes = notesByTitle(connection);
  std::vector<std::int64_t> linked;
  sqlite::Query texts = connection.query(
      fmt::format("SELECT note.id, {} FROM noteSummary s JOIN note ON note.id = s.note "
                  "WHERE s.encrypted = 0 AND ifnull(s.permanentlyDeleted, 0) = 0 "
                  "AND (s.features IS NULL OR (s.features & {}) <> 0)",
                  readableText, static_cast<std::int64_t>(TextFacts::wikiLinks)));
  while (texts.step()) {
    const auto summary = zephyrdown::ZDKAST::fromMarkdown(std::string(texts.text(1))).textSummary();
    for (const std::string& target : summary.wikiLinks) {
      const auto* called = notesCalled(target, notes);
      if (called == nullptr) continue;
      for (const std::int64_t note : *called) {
        if (note != texts.integer(0)) linked.push_back(note);
      }
    }
  }
  return linked;
}

}  // namespace tavimodel
