#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/model/search/slice_builder.h"
#include "platform/model/search/trigrams.h"
#include "platform/model/storage/bookkeeping.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The trigram index over the notes' titles and texts: a prefilter. It tells which notes may hold a
/// term; whether they do is decided on their texts.
///
/// Notes are in slices (see slice_blocks.h). When a note is changed, deleted or locked, triggers
/// take its row out of the index at once. The trigrams of its former text stay in the slice, where
/// they find nothing, until the slice is rewritten: by the next command after a deletion or a lock,
/// otherwise when its turn comes.
class SearchIndex {
 public:
  explicit SearchIndex(sqlite::Connection& connection) : connection_(connection) {}

  /// Terms shorter than this (in scalars, after folding) are not in the index.
  static constexpr std::size_t shortestTerm = trigramLength;

  struct Candidates {
    std::vector<std::int64_t> notes;  ///< ascending; may hold the term
    bool complete = true;             ///< false: there are more than `most`, these are some
  };
  /// Notes that may hold the term, and all that the index does not know yet. Nothing when the term
  /// is too short for the index, or the database too old.
  std::optional<Candidates> candidates(std::string_view term, std::size_t most);

  /// Does what there is to do, for about as long as the budget says. Needs an open write
  /// transaction.
  void bringUpToDate(TidyBudget budget);

 private:
  using Clock = std::chrono::steady_clock;

  /// Values of noteSummary.searchRow.
  std::vector<std::int64_t> rowsWith(const std::vector<Trigram>& trigrams, std::size_t most);
  void removeExpired(Clock::time_point deadline);
  void removeNextStale();
  bool removeStale(std::int64_t slice);
  bool addNotes(Clock::time_point deadline);
  void addNote(SliceBuilder& builder, std::int64_t note, std::int64_t slice);
  void mergeSmall();
  void merge(const std::vector<std::int64_t>& slices);
  bool areUnknown(std::int64_t atLeast);
  /// Ids of the next few notes after that one that are not indexed, ascending.
  std::vector<std::int64_t> nextUnknown(std::int64_t after);
  std::int64_t newSlice();
  std::int64_t number(std::string_view sql);
  void setCounter(std::string_view name, std::int64_t value);
  PositionSet liveIn(std::int64_t slice);

  sqlite::Connection& connection_;
};

/// SearchIndex::bringUpToDate, as the database calls it when it is closed (see IndexUpdate).
void updateSearchIndex(sqlite::Connection& connection, TidyBudget budget);

}  // namespace tavimodel
