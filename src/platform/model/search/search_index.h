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

struct NoteToIndex;

/// The trigram index of the notes' titles and texts. It is a prefilter: it finds the notes that may
/// contain a term, and the caller checks their texts.
///
/// Notes are grouped in slices (see slice_blocks.h). When a note is changed, deleted or locked,
/// triggers remove its row from the index at once. The trigrams of its former text stay in the
/// slice, without effect, until the slice is rewritten: by the next command after a deletion or
/// lock, otherwise in rotation. Where a tag is renamed in many notes, the slices are changed
/// instead (see index_changes.h).
class SearchIndex {
 public:
  explicit SearchIndex(sqlite::Connection& connection) : connection_(connection) {}

  /// The length of the shortest term that the index can look up, in Unicode scalars after folding.
  static constexpr std::size_t shortestTerm = trigramLength;

  /// The notes that may contain a term.
  struct Candidates {
    std::vector<std::int64_t> notes;  ///< ascending ids
    bool complete = true;  ///< false: there are more than `most`, and `notes` has only some
  };
  /// Finds notes that may contain the term; notes that are not indexed yet always count. Absent if
  /// the term is too short for the index or the database's schema is too old. Throws sqlite::Error.
  std::optional<Candidates> candidates(std::string_view term, std::size_t most);

  /// Removes outdated texts, indexes new ones and merges slices, for about as long as the budget
  /// allows. Returns true if time ran out before everything was done. Requires an open write
  /// transaction.
  bool bringUpToDate(TidyBudget budget);

 private:
  using Clock = std::chrono::steady_clock;

  /// Values of noteSummary.searchRow.
  std::vector<std::int64_t> rowsWith(const std::vector<Trigram>& trigrams, std::size_t most);
  void removeExpired(Clock::time_point deadline);
  void removeNextStale();
  bool hasStale(std::int64_t slice);
  bool removeStale(std::int64_t slice);
  bool addNotes(SliceBuilder& builder, Clock::time_point deadline, TidyBudget budget);
  void add(SliceBuilder& builder, std::vector<NoteToIndex>& notes, std::int64_t slice,
           const std::vector<NoteToIndex>& addedBefore);
  void store(const NoteToIndex& note);
  std::int64_t sliceToFill(SliceBuilder& builder, std::int64_t whole);
  void mergeSmall(std::int64_t whole);
  void merge(const std::vector<std::int64_t>& slices);
  bool areUnknown(std::int64_t atLeast);
  /// The next few unindexed notes with ids above `after`, ascending, at most `most`.
  std::vector<NoteToIndex> nextUnknown(std::int64_t after, std::int64_t most);
  std::int64_t newSlice();
  std::int64_t number(std::string_view sql);
  void setCounter(std::string_view name, std::int64_t value);
  PositionSet liveIn(std::int64_t slice);

  sqlite::Connection& connection_;
};

/// Calls SearchIndex::bringUpToDate; it is the IndexUpdate that the database runs on closing.
bool updateSearchIndex(sqlite::Connection& connection, TidyBudget budget);

}  // namespace tavimodel
