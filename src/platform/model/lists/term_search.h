#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/lists/fetch_request.h"
#include "platform/model/search/search_plan.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The maximum length of a page, in notes, that is found by scanning notes in the page's order.
inline constexpr std::int64_t longestWalkedPage = 1000;

/// Three ways to find the notes of a query with terms. All find the same notes, and throw
/// sqlite::Error.
class TermSearch {
 public:
  /// `plan` must have terms and must outlive this object.
  TermSearch(sqlite::Connection& connection, const SearchPlan& plan, Place place)
      : connection_(connection), plan_(plan), place_(place) {}

  /// Returns the matching ids, ascending. Absent if the trigram index cannot narrow the search to
  /// at most `most` candidates.
  std::optional<std::vector<std::int64_t>> throughIndex(std::size_t most);

  /// Scans notes in the request's order until its page is full, and returns the page's ids. Absent
  /// if SQL cannot sort in that order, or if after `patience` notes less than a quarter of the page
  /// has been found.
  std::optional<std::vector<std::int64_t>> byWalking(const FetchRequest& request,
                                                     std::int64_t patience);

  /// Returns the matching ids, ascending, by reading the texts of all notes that satisfy the
  /// conditions in SQL.
  std::vector<std::int64_t> throughAll();

 private:
  using Terms = std::vector<std::string>;

  sqlite::Query select(std::string_view from, std::string_view order);
  sqlite::Query selectTexts(std::string_view order);
  std::optional<std::vector<std::int64_t>> candidatesOfAny(const Terms& terms, std::size_t most);
  std::vector<std::int64_t> amongTextsOfAll();
  std::vector<std::int64_t> matchesAmong(const std::vector<std::int64_t>& candidates);
  bool readsTexts() const { return !plan_.ocrOnly() && !plan_.titlesOnly(); }
  /// Whether nothing but titles and texts decides.
  bool decidesByText() const {
    return readsTexts() && plan_.where() == "1" && plan_.columns().empty();
  }
  bool matchesByLookup(const sqlite::Query& row);
  bool matches(const sqlite::Query& row, std::string_view text);
  std::string recognisedText(std::int64_t note);

  sqlite::Connection& connection_;
  const SearchPlan& plan_;
  Place place_;
  std::optional<sqlite::Query> text_;  ///< selects the text of one note; made on first use
};

}  // namespace tavimodel
