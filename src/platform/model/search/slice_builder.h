#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/model/search/slice_positions.h"
#include "platform/model/search/trigrams.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// A slice of the search index (see slice_blocks.h) that is made in memory, note by note.
class SliceBuilder {
 public:
  /// Adds the note at the next position. `texts` are folded; no trigram spans two of them.
  void addNote(const std::vector<std::string_view>& texts);
  /// Adds the note at the next position, which it returns, without any trigram.
  int addPosition() { return notes_++; }
  /// The positions of the notes with that key of an entry (see slice_blocks.h), to be added to.
  /// Valid until the next key.
  PositionList& listOf(std::string_view key);

  int notes() const { return notes_; }
  /// No more notes are to be added.
  bool isFull() const;
  void write(sqlite::Connection& connection, std::int64_t slice);

 private:
  struct Entry {
    Trigram trigram;
    PositionList positions;
  };

  PositionList& listOf(Trigram trigram);
  void enlarge();

  int notes_ = 0;
  PositionList ofAnything_;  ///< notes with too many trigrams
  std::vector<Entry> entries_;
  std::vector<std::uint32_t> places_;  ///< open hash table: places in `entries_` plus 1, 0: free
};

}  // namespace tavimodel
