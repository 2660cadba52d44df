#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/model/search/recent_trigrams.h"
#include "platform/model/search/slice_positions.h"
#include "platform/model/search/trigrams.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Builds a slice of the search index in memory, note by note (see slice_blocks.h).
class SliceBuilder {
 public:
  /// Reads the entries of a slice with this many notes into an empty builder.
  void load(sqlite::Connection& connection, std::int64_t slice, int notes);
  /// Adds a note at the next position. `texts` must be folded; no trigram spans two of them.
  void addNote(const std::vector<std::string_view>& texts);
  /// Adds a note without trigrams at the next position, and returns the position.
  int addPosition() { return notes_++; }
  /// The new position of each one of another slice; negative: none.
  using Moves = std::array<int, sliceCapacity>;
  /// Adds an entry of another slice (see slice_blocks.h), with its positions moved.
  void addEntry(std::string_view key, std::string_view positions, const Moves& moved);

  int notes() const { return notes_; }
  /// Whether no more notes should be added.
  bool isFull() const;
  /// Writes the slice, and leaves the builder empty.
  void write(sqlite::Connection& connection, std::int64_t slice);

 private:
  /// A slot of the hash table: a trigram and its index in the vectors below.
  struct Slot {
    Trigram trigram;
    std::uint32_t place;
  };

  /// The trigram's index in the vectors below; adds a new trigram.
  std::size_t placeOf(Trigram trigram);
  std::size_t addTrigram(Slot& slot, Trigram trigram);
  void addWord(int group, std::size_t place, std::uint64_t notes);
  PositionSet positionsOf(std::size_t place) const;
  std::size_t slotOf(Trigram trigram) const;
  void enlarge();
  void addRecent();
  void clear();

  int notes_ = 0;
  RecentTrigrams recent_;   ///< of the last notes, not yet in `words_`
  PositionSet ofAnything_;  ///< notes with too many trigrams
  std::vector<Trigram> trigrams_;
  /// For each group of 64 notes their bits, by place. The group that is being added to is small
  /// enough for a processor's cache. Places behind the end have no bits.
  std::array<std::vector<std::uint64_t>, sliceCapacity / RecentTrigrams::notes> words_;
  std::vector<Slot> slots_;  ///< hash table with linear probing
};

}  // namespace tavimodel
