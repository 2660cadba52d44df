#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The trigram index over the notes' titles and texts: a prefilter. It tells which notes may hold a
/// term; whether they do is decided on their texts.
class SearchIndex {
 public:
  explicit SearchIndex(sqlite::Connection& connection) : connection_(connection) {}

  /// Terms shorter than this (in scalars, after folding) are not in the index.
  static constexpr std::size_t shortestTerm = 3;

  /// The form of a term or a text in the index.
  static std::string folded(std::string_view text);

  struct Candidates {
    std::vector<std::int64_t> notes;  ///< ascending; may hold the term
    bool complete = true;             ///< false: there are more than `most`, these are some
  };
  /// Notes that may hold the term, and all that the index does not know yet. Nothing when the term
  /// is too short for the index.
  std::optional<Candidates> candidates(std::string_view term, std::size_t most);

  /// Brings notes into the index until it knows all, or `milliseconds` have passed, and works out
  /// the facts of their texts on the way. Needs an open write transaction.
  void bringUpToDate(int milliseconds);

 private:
  void bring(std::int64_t note, std::int64_t searchRow);
  /// Ids of the next few notes behind that one that are not indexed, ascending.
  std::vector<std::int64_t> nextUnknown(std::int64_t after);
  void dropWhenStale();

  sqlite::Connection& connection_;
};

/// SearchIndex::bringUpToDate, as the database calls it when it is closed (see IndexUpdate).
void updateSearchIndex(sqlite::Connection& connection, int milliseconds);

}  // namespace tavimodel
