#include "platform/model/lists/note_fetch.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <string>

#include "platform/model/lists/row_order.h"
#include "platform/model/search/search_index.h"
#include "platform/model/search/search_plan.h"
#include "platform/model/storage/note_texts.h"
#include "platform/model/storage/row_ids.h"

namespace tavimodel {
namespace {

/// A term with more candidates than this is common: a page of it is found sooner by walking.
constexpr std::int64_t commonFrom = 2000;
/// So many notes of a tag, a day or a state are looked up; more are found while all are walked
/// through.
constexpr std::int64_t mostDriven = 10'000;
/// And so many for a page, which is found sooner by walking in its order where there are more.
constexpr std::int64_t mostSorted = 400;
/// Pages up to here are walked to.
constexpr std::int64_t longestWalkedPage = 1000;
/// A walk that has looked at so many notes and found less than a quarter of its page gives up.
constexpr std::int64_t shortWalk = 256;
constexpr std::int64_t longWalk = 4096;
constexpr std::size_t unlimited = SIZE_MAX;

/// The texts of notes that come by ascending id: a walk over all of them, which leaps where the
/// next one is far.
class TextWalk {
 public:
  explicit TextWalk(sqlite::Connection& connection) : connection_(connection) {}

  /// Empty for a locked note and for one that does not exist. Valid until the next call.
  std::string_view textOf(std::int64_t note) {
    constexpr int near = 4;
    for (int steps = 0; texts_ && steps < near && id_ < note; ++steps) step();
    if (!texts_ || id_ < note) leapTo(note);
    return id_ == note ? texts_->text(1) : std::string_view();
  }

 private:
  void step() { id_ = texts_->step() ? texts_->integer(0) : INT64_MAX; }
  void leapTo(std::int64_t note) {
    texts_.reset();
    texts_.emplace(connection_.query(
        fmt::format("SELECT id, {} FROM note WHERE id >= ?1 ORDER BY id", readableText)));
    texts_->bind(1, note);
    step();
  }

  sqlite::Connection& connection_;
  std::optional<sqlite::Query> texts_;
  std::int64_t id_ = 0;
};

/// Decides one query's terms, note by note.
class TermSearch {
 public:
  TermSearch(sqlite::Connection& connection, const SearchPlan& plan, const Predicate& predicate)
      : connection_(connection), plan_(plan), base_(predicate.sql()) {}

  /// The ids that match, when the index can narrow the search to at most `most` candidates.
  std::optional<std::vector<std::int64_t>> throughIndex(std::size_t most) {
    std::optional<std::vector<std::int64_t>> fewest;
    for (const auto& terms : mostTelling(plan_.requiredTerms())) {
      auto candidates = candidatesOfAny(terms, fewest ? fewest->size() : most);
      if (candidates && (!fewest || candidates->size() < fewest->size())) fewest = candidates;
    }
    if (!fewest) return std::nullopt;
    return decided("json_each(?0) wanted CROSS JOIN noteSummary s ON s.note = wanted.value", "",
                   jsonArray(*fewest));
  }

  /// Ids in the request's order until the page is full; nothing when it takes too long.
  std::optional<std::vector<std::int64_t>> byWalking(const FetchRequest& request,
                                                     std::int64_t patience) {
    const std::string order = orderClause(request);
    if (order.empty() || request.fetchOffset > longestWalkedPage - request.fetchLimit)
      return std::nullopt;
    const std::int64_t wanted = request.fetchOffset + request.fetchLimit;
    std::vector<std::int64_t> found;
    std::int64_t looked = 0;
    sqlite::Query rows = select("noteSummary s", order);
    plan_.bind(rows);
    while (static_cast<std::int64_t>(found.size()) < wanted && rows.step()) {
      const bool hopeful = static_cast<std::int64_t>(found.size()) * 4 >= wanted;
      if (++looked > patience && !hopeful) return std::nullopt;
      if (matchesByLookup(rows)) found.push_back(rows.integer(0));
    }
    const auto skipped = std::min(request.fetchOffset, static_cast<std::int64_t>(found.size()));
    found.erase(found.begin(), found.begin() + skipped);
    return found;
  }

  /// All ids that match, ascending, by reading the texts of all notes that SQL leaves.
  std::vector<std::int64_t> throughAll() {
    // Two walks side by side, both in the order of ids: a join would look every row up.
    const std::string from = plan_.source() + (plan_.drivenNotes() ? "" : " NOT INDEXED");
    sqlite::Query rows = select(from, " ORDER BY s.note");
    plan_.bind(rows);
    TextWalk texts(connection_);
    std::vector<std::int64_t> found;
    while (rows.step()) {
      const std::int64_t note = rows.integer(0);
      const bool readsText = !plan_.ocrOnly() && !plan_.titlesOnly();
      if (matches(rows, readsText ? texts.textOf(note) : std::string_view())) found.push_back(note);
    }
    return found;
  }

 private:
  static constexpr int titleColumn = 1;
  static constexpr int lockedColumn = 2;
  static constexpr int firstPlanColumn = 3;

  sqlite::Query select(std::string_view from, std::string_view order) {
    return connection_.query(
        fmt::format("SELECT s.note, s.title, s.encrypted{} FROM {} WHERE {} AND {}{}",
                    plan_.columns(), from, base_, plan_.where(), order));
  }

  using Terms = std::vector<std::string>;

  /// The few groups that narrow the search most: those whose shortest term is long.
  static std::vector<Terms> mostTelling(std::vector<Terms> groups) {
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

  /// Notes that may hold one of the terms; nothing when the index cannot tell or there are too
  /// many.
  std::optional<std::vector<std::int64_t>> candidatesOfAny(const std::vector<std::string>& terms,
                                                           std::size_t most) {
    SearchIndex index(connection_);
    std::vector<std::int64_t> all;
    for (const std::string& term : terms) {
      auto candidates = index.candidates(term, most);
      if (!candidates || !candidates->complete) return std::nullopt;
      all.insert(all.end(), candidates->notes.begin(), candidates->notes.end());
      if (all.size() > most && most != unlimited) return std::nullopt;
    }
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
  }

  std::vector<std::int64_t> decided(std::string_view from, std::string_view order,
                                    const std::string& list) {
    const int listParameter = plan_.parameterCount() + 1;
    std::string source(from);
    source.replace(source.find("?0"), 2, fmt::format("?{}", listParameter));
    sqlite::Query rows = select(source, order);
    plan_.bind(rows);
    rows.bind(listParameter, list);
    std::vector<std::int64_t> found;
    while (rows.step()) {
      if (matchesByLookup(rows)) found.push_back(rows.integer(0));
    }
    return found;
  }

  bool matchesByLookup(const sqlite::Query& row) {
    if (plan_.ocrOnly() || plan_.titlesOnly()) return matches(row, {});
    sqlite::Query text =
        connection_.query(fmt::format("SELECT {} FROM note WHERE id = ?1", readableText));
    text.bind(1, row.integer(0));
    return matches(row, text.step() ? text.text(0) : std::string_view());
  }

  bool matches(const sqlite::Query& row, std::string_view text) {
    if (!plan_.ocrOnly()) return plan_.matches(row.text(titleColumn), text, row, firstPlanColumn);
    const bool locked = row.integer(lockedColumn) != 0;
    const std::string recognised = locked ? std::string() : recognisedText(row.integer(0));
    return plan_.matches({}, recognised, row, firstPlanColumn);
  }

  std::string recognisedText(std::int64_t note) {
    sqlite::Query query = connection_.query("SELECT ocrText FROM file WHERE note = ?1");
    query.bind(1, note);
    std::string text;
    while (query.step()) {
      text += query.text(0);
      text += '\n';
    }
    return text;
  }

  sqlite::Connection& connection_;
  const SearchPlan& plan_;
  std::string base_;
};

/// An absent title and an empty one are equal, but SQL puts one before the other.
bool canSQLSort(sqlite::Connection& connection, const FetchRequest& request) {
  const auto& keys = request.sortDescriptors;
  if (std::none_of(keys.begin(), keys.end(), [](auto& by) { return by.key == SortKey::title; })) {
    return true;
  }
  constexpr std::string_view anywhere =
      "SELECT 1 FROM noteSummary WHERE trashed IN (0, 1) AND archived IN (0, 1) AND title";
  sqlite::Query both = connection.query(
      fmt::format("SELECT EXISTS ({0} IS NULL) AND EXISTS ({0} = '')", anywhere));
  both.step();
  return both.integer(0) == 0;
}

/// A fetch that SQL decides by itself.
NoteTable decidedBySQL(sqlite::Connection& connection, const FetchRequest& request,
                       const SearchPlan* plan) {
  const std::string order = orderClause(request);
  const bool page = request.fetchLimit <= longestWalkedPage && !order.empty() &&
                    canSQLSort(connection, request);
  std::string from = plan != nullptr ? plan->source() : "noteSummary s";
  // A whole list is not fetched through an index: it would look every row up.
  const bool walk = !page && plan == nullptr;
  if (walk) from += " NOT INDEXED";
  NoteTable table(request.detailed);
  std::string sql = fmt::format("SELECT {} FROM {} WHERE {} AND {}", table.columns(), from,
                                request.predicate.sql(), plan != nullptr ? plan->where() : "1");
  if (page) {
    sql += fmt::format("{} LIMIT {} OFFSET {}", order, request.fetchLimit, request.fetchOffset);
  }
  sqlite::Query query = connection.query(sql);
  if (plan != nullptr) plan->bind(query);
  if (walk) table.reserve(static_cast<std::size_t>(NoteFetch(connection).count(request.predicate)));
  while (query.step()) table.add(query);
  table.loadRelations(connection);
  if (!page) table.setOrder(sortedPage(table.rows(), request));
  return table;
}

NoteTable tableOf(sqlite::Connection& connection, const std::vector<std::int64_t>& ids,
                  bool detailed) {
  NoteTable table(detailed);
  sqlite::Query query =
      connection.query(fmt::format("SELECT {} FROM json_each(?1) wanted CROSS JOIN noteSummary s "
                                   "ON s.note = wanted.value",
                                   table.columns()));
  const std::string list = jsonArray(ids);
  query.bind(1, list);
  table.reserve(ids.size());
  while (query.step()) table.add(query);
  table.loadRelations(connection);
  return table;
}

NoteTable sorted(NoteTable table, const FetchRequest& request) {
  table.setOrder(sortedPage(table.rows(), request));
  return table;
}

}  // namespace

NoteTable NoteFetch::table(const FetchRequest& request) {
  if (!request.predicate.search()) return decidedBySQL(connection_, request, nullptr);
  const bool page = request.fetchLimit <= longestWalkedPage;
  const SearchPlan plan(*request.predicate.search(), connection_, page ? mostSorted : mostDriven);
  if (!plan.needsText()) return decidedBySQL(connection_, request, &plan);

  TermSearch search(connection_, plan, request.predicate);
  const auto pageOf = [&](const std::vector<std::int64_t>& ids) {
    return tableOf(connection_, ids, request.detailed);
  };
  if (plan.drivenNotes().value_or(INT64_MAX) <= shortWalk) {
    return sorted(pageOf(search.throughAll()), request);
  }
  if (auto ids = search.byWalking(request, shortWalk)) return pageOf(*ids);
  auto found = search.throughIndex(std::size_t{commonFrom});
  if (!found) {
    if (auto ids = search.byWalking(request, longWalk)) return pageOf(*ids);
    found = search.throughIndex(unlimited);
  }
  if (!found) found = search.throughAll();
  return sorted(pageOf(*found), request);
}

std::int64_t NoteFetch::count(const Predicate& predicate) {
  if (!predicate.search()) {
    sqlite::Query query = connection_.query(fmt::format(
        "SELECT ifnull(sum(value), 0) FROM (SELECT value, place >> 2 AS trashed, "
        "place >> 1 & 1 AS archived, place & 1 AS permanentlyDeleted FROM "
        "(SELECT value, substr(name, 6) + 0 AS place FROM counter WHERE name GLOB 'notes[0-7]')) "
        "WHERE {}",
        predicate.sql()));
    query.step();
    return query.integer(0);
  }
  const SearchPlan plan(*predicate.search(), connection_, mostDriven);
  if (!plan.needsText()) {
    sqlite::Query query = connection_.query(fmt::format(
        "SELECT count(*) FROM {} WHERE {} AND {}", plan.source(), predicate.sql(), plan.where()));
    plan.bind(query);
    query.step();
    return query.integer(0);
  }
  TermSearch search(connection_, plan, predicate);
  const bool isDriven = plan.drivenNotes().value_or(INT64_MAX) <= shortWalk;
  const auto found = isDriven ? std::nullopt : search.throughIndex(unlimited);
  return static_cast<std::int64_t>(found ? found->size() : search.throughAll().size());
}

}  // namespace tavimodel
