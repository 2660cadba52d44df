#include "platform/model/lists/term_search.h"

#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>

#include "platform/model/lists/row_order.h"
#include "platform/model/lists/text_walk.h"
#include "platform/model/search/search_index.h"
#include "platform/model/storage/note_texts.h"
#include "platform/model/storage/row_ids.h"

namespace tavimodel {
namespace {

using Terms = std::vector<std::string>;

// The columns of TermSearch::select.
constexpr int titleColumn = 1;
constexpr int lockedColumn = 2;
constexpr int firstPlanColumn = 3;
// Of statements with texts; their other columns are the same.
constexpr int textColumn = 3;

/// The few groups that narrow the search most: those with the longest shortest term.
std::vector<Terms> mostTelling(std::vector<Terms> groups) {
  constexpr std::size_t enough = 3;
  const auto shortest = [](const Terms& terms) {
    std::size_t length = SIZE_MAX;
    for (const std::string& term : terms) length = std::min(length, term.size());
    return length;
  };
  std::stable_sort(groups.begin(), groups.end(),
                   [&](const Terms& a, const Terms& b) { return shortest(a) > shortest(b); });
  if (groups.size() > enough) groups.resize(enough);
  return groups;
}

/// Whether an index of noteSummary has the notes of a place in this order.
bool isOrderOfAnIndex(const std::vector<SortDescriptor>& order) {
  const auto is = [&](std::initializer_list<SortKey> keys) {
    return std::equal(order.begin(), order.end(), keys.begin(), keys.end(),
                      [](const auto& by, SortKey key) { return by.key == key && !by.ascending; });
  };
  return is({SortKey::pinned, SortKey::modificationDate}) || is({SortKey::modificationDate}) ||
         is({SortKey::creationDate});
}

}  // namespace

sqlite::Query TermSearch::select(std::string_view from, std::string_view order) {
  return connection_.query(
      fmt::format("SELECT s.note, s.title, s.encrypted{} FROM {} WHERE {} AND {}{}",
                  plan_.columns(), from, placeTest(place_), plan_.where(), order));
}

/// Selects the notes that are neither in the trash nor in the archive, with their texts. Reads
/// nothing of noteSummary but an index, since a row of it may be on a page of its own. In other
/// orders and places SQLite would sort the notes, and their texts with them.
sqlite::Query TermSearch::selectTexts(std::string_view order) {
  return connection_.query(fmt::format(
      "SELECT s.note, note.title, note.encrypted, {} "
      "FROM noteSummary s CROSS JOIN note ON note.id = s.note "
      "WHERE s.trashed = 0 AND s.archived = 0 AND ifnull(note.permanentlyDeleted, 0) = 0{}",
      readableText, order));
}

std::optional<std::vector<std::int64_t>> TermSearch::throughIndex(std::size_t most) {
  std::optional<std::vector<std::int64_t>> fewest;
  for (const Terms& terms : mostTelling(plan_.requiredTerms())) {
    auto candidates = candidatesOfAny(terms, fewest ? fewest->size() : most);
    if (candidates && (!fewest || candidates->size() < fewest->size())) fewest = candidates;
  }
  if (!fewest) return std::nullopt;
  return matchesAmong(*fewest);
}

/// The notes that may contain one of the terms. Absent if the index cannot look them up, or if
/// there are more than `most`.
std::optional<std::vector<std::int64_t>> TermSearch::candidatesOfAny(const Terms& terms,
                                                                     std::size_t most) {
  SearchIndex index(connection_);
  std::vector<std::int64_t> all;
  for (const std::string& term : terms) {
    auto candidates = index.candidates(term, most);
    if (!candidates || !candidates->complete) return std::nullopt;
    all.insert(all.end(), candidates->notes.begin(), candidates->notes.end());
    if (all.size() > most) return std::nullopt;
  }
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

std::vector<std::int64_t> TermSearch::matchesAmong(const std::vector<std::int64_t>& candidates) {
  const int listParameter = plan_.parameterCount() + 1;
  sqlite::Query rows =
      select(fmt::format("json_each(?{}) wanted CROSS JOIN noteSummary s ON s.note = wanted.value",
                         listParameter),
             "");
  plan_.bind(rows);
  const std::string list = jsonArray(candidates);
  rows.bind(listParameter, list);
  std::vector<std::int64_t> found;
  while (rows.step()) {
    if (matchesByLookup(rows)) found.push_back(rows.integer(0));
  }
  return found;
}

std::optional<std::vector<std::int64_t>> TermSearch::byWalking(const FetchRequest& request,
                                                               std::int64_t patience) {
  const std::string order = orderClause(request);
  if (order.empty() || request.fetchOffset > longestWalkedPage - request.fetchLimit)
    return std::nullopt;
  const std::int64_t wanted = request.fetchOffset + request.fetchLimit;
  std::vector<std::int64_t> found;
  std::int64_t looked = 0;
  const bool withTexts =
      place_ == Place::notes && decidesByText() && isOrderOfAnIndex(request.sortDescriptors);
  sqlite::Query rows = withTexts ? selectTexts(order) : select("noteSummary s", order);
  plan_.bind(rows);
  while (static_cast<std::int64_t>(found.size()) < wanted && rows.step()) {
    const bool hopeful = static_cast<std::int64_t>(found.size()) * 4 >= wanted;
    if (++looked > patience && !hopeful) return std::nullopt;
    if (withTexts ? matches(rows, rows.text(textColumn)) : matchesByLookup(rows)) {
      found.push_back(rows.integer(0));
    }
  }
  const auto skipped = std::min(request.fetchOffset, static_cast<std::int64_t>(found.size()));
  found.erase(found.begin(), found.begin() + skipped);
  return found;
}

std::vector<std::int64_t> TermSearch::throughAll() {
  if (decidesByText()) return amongTextsOfAll();
  // Scans both tables in parallel, in the order of ids; a join would look up each row.
  const std::string from = plan_.source() + (plan_.drivenNotes() ? "" : " NOT INDEXED");
  sqlite::Query rows = select(from, " ORDER BY s.note");
  plan_.bind(rows);
  TextWalk texts(connection_);
  std::vector<std::int64_t> found;
  while (rows.step()) {
    const std::int64_t note = rows.integer(0);
    if (matches(rows, readsTexts() ? texts.textOf(note) : std::string_view())) {
      found.push_back(note);
    }
  }
  return found;
}

/// Scans one table only, which has all that decides.
std::vector<std::int64_t> TermSearch::amongTextsOfAll() {
  sqlite::Query rows = connection_.query(
      fmt::format("SELECT id, title, encrypted, {} FROM note NOT INDEXED WHERE {} ORDER BY id",
                  readableText, placeTest(place_)));
  std::vector<std::int64_t> found;
  while (rows.step()) {
    if (matches(rows, rows.text(textColumn))) found.push_back(rows.integer(0));
  }
  return found;
}

bool TermSearch::matchesByLookup(const sqlite::Query& row) {
  if (!readsTexts()) return matches(row, {});
  if (!text_) {
    text_.emplace(
        connection_.query(fmt::format("SELECT {} FROM note WHERE id = ?1", readableText)));
  }
  text_->reset().bind(1, row.integer(0));
  return matches(row, text_->step() ? text_->text(0) : std::string_view());
}

/// `text` is the note's text, empty if the note is locked, so that only its title can match.
bool TermSearch::matches(const sqlite::Query& row, std::string_view text) {
  if (!plan_.ocrOnly()) return plan_.matches(row.text(titleColumn), text, row, firstPlanColumn);
  const bool locked = row.integer(lockedColumn) != 0;
  const std::string recognised = locked ? std::string() : recognisedText(row.integer(0));
  return plan_.matches({}, recognised, row, firstPlanColumn);
}

std::string TermSearch::recognisedText(std::int64_t note) {
  sqlite::Query query = connection_.query("SELECT ocrText FROM file WHERE note = ?1");
  query.bind(1, note);
  std::string text;
  while (query.step()) {
    text += query.text(0);
    text += '\n';
  }
  return text;
}

}  // namespace tavimodel
