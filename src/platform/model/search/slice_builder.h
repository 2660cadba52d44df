#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/model/search/slice_positions.h"
#include "platform/model/search/trigrams.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Builds a slice of the search index in memory, note by note (see slice_blocks.h).
class SliceBuilder {
 public:
  /// Adds a note at the next position. `texts` must be folded; no trigram spans two of them.
  void addNote(const std::vector<std::string_view>& texts);
  /// Adds a note without trigrams at the next position, and returns the position.
  int addPosition() { return notes_++; }
  /// The positions of the notes with an entry's key (see slice_blocks.h), for adding more. Valid
  /// until the next call.
  PositionList& listOf(std::string_view key);

  int notes() const { return notes_; }
  /// Whether no more notes should be added.
  bool isFull() const;
  void write(sqlite::Connection& connection, std::int64_t slice);

 private:
  /// A trigram and the positions of the notes that contain it.
  struct Entry {
    Trigram trigram;
    PositionList positions;
  };

  PositionList& listOf(Trigram trigram);
  void enlarge();

  int notes_ = 0;
  PositionList ofAnything_;  ///< notes with too many trigrams
  std::vector<Entry> entries_;
  std::vector<std::uint32_t>
      places_;  ///< hash table with linear probing: index in `entries_` plus 1; 0: free
};

}  // namespace tavimodel
