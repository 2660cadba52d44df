#include "platform/model/lists/note_fetch.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>

#include "platform/model/lists/row_order.h"
#include "platform/model/lists/term_search.h"
#include "platform/model/search/search_plan.h"
#include "platform/model/storage/row_ids.h"
#include "platform/system/shared_work.h"

namespace tavimodel {
namespace {

/// With more candidates than this a term is common, and a page of its notes is found faster by
/// scanning in the page's order.
constexpr std::size_t commonFrom = 2000;
/// Up to this many notes of a tag, a day or a state are looked up; above it, all notes are scanned.
constexpr std::int64_t mostDriven = 10'000;
/// The same limit for a page; above it, scanning in the page's order is faster.
constexpr std::int64_t mostSorted = 400;
/// After how many notes a scan in the page's order may give up.
constexpr std::int64_t shortWalk = 256;
constexpr std::int64_t longWalk = 4096;
constexpr std::size_t unlimited = SIZE_MAX;

/// Whether SQL can sort the request. Not if there are both absent and empty titles, which count as
/// equal, but which SQL would order.
bool canSQLSort(sqlite::Connection& connection, const FetchRequest& request) {
  const auto& keys = request.sortDescriptors;
  if (std::none_of(keys.begin(), keys.end(), [](auto& by) { return by.key == SortKey::title; })) {
    return true;
  }
  constexpr std::string_view anywhere =
      "SELECT 1 FROM noteSummary WHERE trashed IN (0, 1) AND archived IN (0, 1) AND title";
  sqlite::Query both =
      connection.query(fmt::format("SELECT EXISTS ({0} IS NULL) AND EXISTS ({0} = '')", anywhere));
  both.step();
  return both.integer(0) == 0;
}

bool isPage(const FetchRequest& request) {
  return request.fetchLimit <= longestWalkedPage;
}

bool isDriven(const SearchPlan* plan) {
  return plan != nullptr && plan->drivenNotes().has_value();
}

/// Loads the relations of a table, and puts the page that is asked for in order.
NoteTable complete(NoteTable table, sqlite::Connection& connection, const FetchRequest& request) {
  constexpr std::size_t worthAThread = 4096;
  platform::system::SharedWork ordering(
      1, [&](std::size_t) { table.setOrder(sortedPage(table.rows(), request)); },
      table.rows().size() >= worthAThread);
  table.loadRelations(connection);
  ordering.finish();
  return table;
}

/// Fetches notes by SQL alone. `plan` is null if there is no query.
NoteTable decidedBySQL(sqlite::Connection& connection, const FetchRequest& request,
                       const SearchPlan* plan) {
  const std::string order = orderClause(request);
  const bool page = isPage(request) && !order.empty() && canSQLSort(connection, request);
  std::string from = plan != nullptr ? plan->source() : "noteSummary s";
  // Otherwise SQLite would read a complete list through an index of the location, and look up each
  // row.
  if (!page && !isDriven(plan)) from += " NOT INDEXED";
  NoteTable table(request.detailed);
  const std::string_view where = plan != nullptr ? std::string_view(plan->where()) : "1";
  if (page) {
    sqlite::Query query = connection.query(fmt::format(
        "SELECT {} FROM {} WHERE {} AND {}{} LIMIT {} OFFSET {}", table.columns(), from,
        placeTest(request.place), where, order, request.fetchLimit, request.fetchOffset));
    if (plan != nullptr) plan->bind(query);
    while (query.step()) table.add(query);
    table.loadRelations(connection);
    return table;
  }
  sqlite::Query query =
      connection.query(fmt::format("SELECT visitRow({}) FROM {} WHERE {} AND {}", table.columns(),
                                   from, placeTestOfScan(request.place), where));
  if (plan != nullptr) {
    plan->bind(query);
  } else {
    table.reserve(static_cast<std::size_t>(NoteFetch(connection).count(request)));
  }
  query.visit([&](const sqlite::Row& row) { table.add(row); });
  return complete(std::move(table), connection, request);
}

/// The table of these notes, in this order, without their relations.
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
  return table;
}

/// The names of the counters that count the notes of a place (see noteSummary.place in schema.cpp).
std::string_view counters(Place place) {
  switch (place) {
    case Place::anywhere:
      break;
    case Place::notes:
      return "'notes0'";
    case Place::trash:
      return "'notes4', 'notes6'";
    case Place::archive:
      return "'notes2', 'notes6'";
  }
  return "'notes0', 'notes2', 'notes4', 'notes6'";
}

std::int64_t number(sqlite::Query query) {
  query.step();
  return query.integer(0);
}

}  // namespace

NoteTable NoteFetch::table(const FetchRequest& request) {
  if (!request.search) return decidedBySQL(connection_, request, nullptr);
  const SearchPlan plan(*request.search, connection_, isPage(request) ? mostSorted : mostDriven);
  if (!plan.needsText()) return decidedBySQL(connection_, request, &plan);

  TermSearch search(connection_, plan, request.place);
  const auto inOrder = [&](const std::vector<std::int64_t>& ids) {
    NoteTable table = tableOf(connection_, ids, request.detailed);
    table.loadRelations(connection_);
    return table;
  };
  const auto unordered = [&](const std::vector<std::int64_t>& ids) {
    return complete(tableOf(connection_, ids, request.detailed), connection_, request);
  };
  if (plan.drivenNotes().value_or(INT64_MAX) <= shortWalk) return unordered(search.throughAll());
  if (auto ids = search.byWalking(request, shortWalk)) return inOrder(*ids);
  auto found = search.throughIndex(commonFrom);
  if (!found) {
    if (auto ids = search.byWalking(request, longWalk)) return inOrder(*ids);
    found = search.throughIndex(unlimited);
  }
  if (!found) found = search.throughAll();
  return unordered(*found);
}

std::int64_t NoteFetch::count(const FetchRequest& request) {
  if (!request.search) {
    return number(connection_.query(fmt::format(
        "SELECT ifnull(sum(value), 0) FROM counter WHERE name IN ({})", counters(request.place))));
  }
  const SearchPlan plan(*request.search, connection_, mostDriven);
  if (!plan.needsText()) {
    const bool scan = !isDriven(&plan);
    sqlite::Query query = connection_.query(fmt::format(
        "SELECT count(*) FROM {}{} WHERE {} AND {}", plan.source(), scan ? " NOT INDEXED" : "",
        scan ? placeTestOfScan(request.place) : placeTest(request.place), plan.where()));
    plan.bind(query);
    return number(std::move(query));
  }
  TermSearch search(connection_, plan, request.place);
  const bool isDriven = plan.drivenNotes().value_or(INT64_MAX) <= shortWalk;
  const auto found = isDriven ? std::nullopt : search.throughIndex(unlimited);
  return static_cast<std::int64_t>(found ? found->size() : search.throughAll().size());
}

}  // namespace tavimodel
