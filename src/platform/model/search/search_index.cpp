#include "platform/model/search/search_index.h"

#include <algorithm>
#include <chrono>
#include <string>

#include "platform/model/storage/row_ids.h"
#include "platform/model/storage/text_facts.h"
#include "platform/text/folding.h"
#include "platform/text/utf8.h"

namespace tavimodel {
namespace {

/// A look-up of every trigram of a huge term keeps FTS5 busy for many seconds, and the first dozen
/// tell nearly all that there is to tell.
constexpr std::size_t mostTrigrams = 12;

std::vector<std::size_t> scalarStarts(std::string_view text) {
  std::vector<std::size_t> starts;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) starts.push_back(i);
  }
  starts.push_back(text.size());
  return starts;
}

/// `"abc" AND "bcd" ...`, spread over the whole term; each trigram is a string of FTS5's query
/// language, in which a double quote is doubled.
std::string trigramQuery(std::string_view folded, const std::vector<std::size_t>& starts) {
  const std::size_t trigrams = starts.size() - 1 - 2;
  const std::size_t used = std::min(trigrams, mostTrigrams);
  std::string query;
  for (std::size_t i = 0; i < used; ++i) {
    const std::size_t at = used == 1 ? 0 : i * (trigrams - 1) / (used - 1);
    if (!query.empty()) query += " AND ";
    query += '"';
    for (const char c : folded.substr(starts[at], starts[at + 3] - starts[at])) {
      query += c;
      if (c == '"') query += c;
    }
    query += '"';
  }
  return query;
}

}  // namespace

std::string SearchIndex::folded(std::string_view text) {
  std::string result = platform::text::foldedForSearch(text);
  // The tokenizer takes a NUL for the text's end.
  std::replace(result.begin(), result.end(), '\0', ' ');
  return result;
}

std::optional<SearchIndex::Candidates> SearchIndex::candidates(std::string_view term,
                                                               std::size_t most) {
  const std::string key = folded(term);
  const std::vector<std::size_t> starts = scalarStarts(key);
  if (starts.size() - 1 < shortestTerm) return std::nullopt;

  Candidates result;
  std::vector<std::int64_t> rows;
  const std::string match = trigramQuery(key, starts);
  {
    sqlite::Query query =
        connection_.query("SELECT rowid FROM searchIndex WHERE searchIndex MATCH ?1");
    query.bind(1, match);
    while (query.step()) {
      if (rows.size() == most) {
        result.complete = false;
        break;
      }
      rows.push_back(query.integer(0));
    }
  }
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

/// One note's row of the index, and what else is worked out of its title and text. The text of a
/// locked note stays out: it is found by its title only.
void SearchIndex::bring(std::int64_t note, std::int64_t searchRow) {
  sqlite::Query read = connection_.query(
      "SELECT note.title, note.text, note.encrypted, s.textDigest IS NULL "
      "FROM note JOIN noteSummary s ON s.note = note.id WHERE note.id = ?1");
  if (!read.bind(1, note).step()) return;
  const std::string_view text = read.text(1);
  std::string body = read.integer(2) != 0 ? std::string() : folded(text);
  body += '\n';
  body += folded(read.text(0));
  sqlite::Query insert = connection_.query("INSERT INTO searchIndex (rowid, body) VALUES (?1, ?2)");
  insert.bind(1, searchRow).bind(2, body).run();

  if (read.integer(3) == 0) {
    sqlite::Query update =
        connection_.query("UPDATE noteSummary SET searchRow = ?2 WHERE note = ?1");
    return update.bind(1, note).bind(2, searchRow).run();
  }
  const TextFacts facts = TextFacts::of(text);
  const std::string key = platform::text::foldedForSearch(read.text(0));
  sqlite::Query update = connection_.query(
      "UPDATE noteSummary SET searchRow = ?2, titleKey = ?3, textDigest = ?4, textLength = ?5, "
      "todoIncomplete = ?6, todoCompleted = ?7, features = ?8 WHERE note = ?1");
  update.bind(1, note).bind(2, searchRow).bind(3, key).bind(4, facts.digest);
  update.bind(5, facts.length).bind(6, facts.todoIncomplete).bind(7, facts.todoCompleted);
  update.bind(8, facts.features).run();
}

void SearchIndex::dropWhenStale() {
  sqlite::Query query = connection_.query(
      "SELECT (SELECT value FROM counter WHERE name = 'searchRow'), "
      "(SELECT sum(value) FROM counter WHERE name GLOB 'notes[0-7]')");
  query.step();
  constexpr std::int64_t slack = 4096;  // rows that point nowhere before it is worth the while
  if (query.integer(0) < 2 * query.integer(1) + slack) return;
  connection_.execute(
      "INSERT INTO searchIndex (searchIndex) VALUES ('delete-all');"
      "UPDATE noteSummary SET searchRow = NULL;"
      "UPDATE counter SET value = 0 WHERE name = 'searchRow'");
}

std::vector<std::int64_t> SearchIndex::nextUnknown(std::int64_t after) {
  constexpr std::int64_t few = 64;
  sqlite::Query query = connection_.query(
      "SELECT note FROM noteSummary WHERE searchRow IS NULL AND note > ?1 ORDER BY note LIMIT ?2");
  query.bind(1, after).bind(2, few);
  std::vector<std::int64_t> notes;
  while (query.step()) notes.push_back(query.integer(0));
  return notes;
}

void SearchIndex::bringUpToDate(int milliseconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  dropWhenStale();
  std::int64_t searchRow = 0;
  {
    sqlite::Query last = connection_.query("SELECT value FROM counter WHERE name = 'searchRow'");
    last.step();
    searchRow = last.integer(0);
  }
  bool timeIsLeft = true;
  std::int64_t note = INT64_MIN;
  for (auto notes = nextUnknown(note); timeIsLeft && !notes.empty(); notes = nextUnknown(note)) {
    for (std::size_t i = 0; i < notes.size() && timeIsLeft; ++i) {
      note = notes[i];
      bring(note, ++searchRow);
      timeIsLeft = std::chrono::steady_clock::now() < deadline;
    }
  }
  connection_.query("UPDATE counter SET value = ?1 WHERE name = 'searchRow'")
      .bind(1, searchRow)
      .run();
}

void updateSearchIndex(sqlite::Connection& connection, int milliseconds) {
  SearchIndex(connection).bringUpToDate(milliseconds);
}

}  // namespace tavimodel
