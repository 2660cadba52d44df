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

/// Pages up to this length are found by walking through the notes in the page's order.
inline constexpr std::int64_t longestWalkedPage = 1000;

/// The roads to the notes in which the terms of one query are. All lead to the same notes.
class TermSearch {
 public:
  /// `plan` has terms, and outlives this.
  TermSearch(sqlite::Connection& connection, const SearchPlan& plan, Place place)
      : connection_(connection), plan_(plan), place_(place) {}

  /// The ids that match, ascending, where the trigram index can narrow the search to at most `most`
  /// candidates.
  std::optional<std::vector<std::int64_t>> throughIndex(std::size_t most);

  /// Ids in the request's order until its page is full. Absent where SQL cannot sort so, and when
  /// `patience` notes have been looked at with less than a quarter of the page found.
  std::optional<std::vector<std::int64_t>> byWalking(const FetchRequest& request,
                                                     std::int64_t patience);

  /// All ids that match, ascending, by reading the texts of all notes that SQL leaves.
  std::vector<std::int64_t> throughAll();

 private:
  using Terms = std::vector<std::string>;

  sqlite::Query select(std::string_view from, std::string_view order);
  std::optional<std::vector<std::int64_t>> candidatesOfAny(const Terms& terms, std::size_t most);
  std::vector<std::int64_t> matchesAmong(const std::vector<std::int64_t>& candidates);
  bool readsTexts() const { return !plan_.ocrOnly() && !plan_.titlesOnly(); }
  bool matchesByLookup(const sqlite::Query& row);
  bool matches(const sqlite::Query& row, std::string_view text);
  std::string recognisedText(std::int64_t note);

  sqlite::Connection& connection_;
  const SearchPlan& plan_;
  Place place_;
};

}  // namespace tavimodel
