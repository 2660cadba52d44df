#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/model/search/slice_positions.h"
#include "platform/model/search/trigrams.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The trigrams that a note has gained and lost when its text was changed in one place. Those
/// gained may include some that it had before.
struct TrigramChange {
  std::vector<Trigram> gained, lost;  ///< ascending

  /// Compares the texts before and after, and the title, which has not changed; all are folded.
  /// Absent if the texts differ over more than a few hundred bytes.
  static std::optional<TrigramChange> between(std::string_view before, std::string_view after,
                                              std::string_view title);
};

/// Changes of many indexed notes, which are written to the search index together. Where many of
/// them gain and lose the same trigrams, this takes far less time than to index the notes again.
class IndexChanges {
 public:
  /// `searchRow`: the note's row in the index (noteSummary.searchRow).
  void add(std::int64_t searchRow, const TrigramChange& change);
  /// Whether the changes take some 30 MB and should be written before more are added.
  bool areMany() const { return trigrams_ > most; }
  /// Writes the changes in the caller's write transaction, and forgets them. Notes in a slice that
  /// has no room for them are set to be indexed again. Throws sqlite::Error.
  void write(sqlite::Connection& connection);

 private:
  struct Positions {
    PositionSet gained, lost;
  };
  struct Slice {
    PositionSet notes;
    std::unordered_map<Trigram, Positions> trigrams;
  };

  static constexpr std::size_t most = 100'000;

  Positions& positionsOf(Slice& slice, Trigram trigram);

  std::map<std::int64_t, Slice> slices_;
  std::size_t trigrams_ = 0;  ///< of all slices
};

}  // namespace tavimodel
