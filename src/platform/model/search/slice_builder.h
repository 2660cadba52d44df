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
///
/// Nearly all the time goes into noting one trigram after the other, so that this touches little
/// memory: a slot of the hash table, and a word with a bit for each of 64 notes in a row. The words
/// are added to the lists of positions when these notes are complete.
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
  struct Slot {
    Trigram trigram;
    std::size_t place;
  };

  /// The trigram's place in the vectors below.
  std::size_t placeOf(Trigram trigram);
  std::size_t addTrigram(Slot& slot, Trigram trigram);
  std::size_t slotOf(Trigram trigram) const;
  void enlarge();
  void completeLists();

  int notes_ = 0;
  PositionList ofAnything_;  ///< notes with too many trigrams
  std::vector<Trigram> trigrams_;
  std::vector<std::uint64_t> words_;  ///< bits of the notes that the lists lack, lowest first
  std::vector<PositionList> lists_;
  std::vector<Slot> slots_;  ///< open hash table
};

}  // namespace tavimodel
