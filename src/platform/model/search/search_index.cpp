#include "platform/model/search/search_index.h"

#include <algorithm>
#include <chrono>
#include <string>

#include "platform/model/storage/row_ids.h"
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

void SearchIndex::add(std::int64_t note, std::string_view title, std::string_view text) {
  std::string body = folded(text);
  body += '\n';
  body += folded(title);
  connection_.query("UPDATE counter SET value = value + 1 WHERE name = 'searchRow'").run();
  sqlite::Query insert = connection_.query(
      "INSERT INTO searchIndex (rowid, body) "
      "VALUES ((SELECT value FROM counter WHERE name = 'searchRow'), ?1)");
  insert.bind(1, body).run();
  connection_
      .query(
          "UPDATE noteSummary SET searchRow = (SELECT value FROM counter "
          "WHERE name = 'searchRow') WHERE note = ?1")
      .bind(1, note)
      .run();
}

void SearchIndex::dropWhenStale() {
  sqlite::Query query = connection_.query(
      "SELECT (SELECT value FROM counter WHERE name = 'searchRow'), "
      "(SELECT count(*) FROM noteSummary)");
  query.step();
  constexpr std::int64_t slack = 4096;  // rows that point nowhere before it is worth the while
  if (query.integer(0) < 2 * query.integer(1) + slack) return;
  connection_.execute(
      "INSERT INTO searchIndex (searchIndex) VALUES ('delete-all');"
      "UPDATE noteSummary SET searchRow = NULL;"
      "UPDATE counter SET value = 0 WHERE name = 'searchRow'");
}

bool SearchIndex::bringUpToDate(int milliseconds) {
  const auto start = std::chrono::steady_clock::now();
  dropWhenStale();
  std::vector<std::int64_t> unknown;
  {
    sqlite::Query query = connection_.query(
        "SELECT note FROM noteSummary WHERE searchRow IS NULL AND textDigest IS NOT NULL");
    while (query.step()) unknown.push_back(query.integer(0));
  }
  for (const std::int64_t note : unknown) {
    sqlite::Query query = connection_.query("SELECT title, text FROM note WHERE id = ?1");
    query.bind(1, note);
    if (query.step()) add(note, query.text(0), query.text(1));
    const auto spent = std::chrono::steady_clock::now() - start;
    if (spent > std::chrono::milliseconds(milliseconds)) return note != unknown.back();
  }
  return false;
}

void updateSearchIndex(sqlite::Connection& connection, int milliseconds) {
  SearchIndex(connection).bringUpToDate(milliseconds);
}

}  // namespace tavimodel
