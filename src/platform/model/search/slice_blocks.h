#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/search/slice_positions.h"
#include "platform/model/search/trigrams.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

// A slice of the search index maps each trigram of its notes' texts to the positions of the notes
// that contain it. It is written in blocks that each fill a database page. To remove a text that is
// not known any more, the whole slice is rewritten.
//
// A block is a sequence of entries, ascending by key. An entry is the length of the key (one byte),
// the key, the length of the positions (one byte), and the positions (see PositionSet::Encoding).
// The key is a trigram in UTF-8; the empty key has the notes whose text has too many trigrams,
// which are candidates for every term.

/// Writes the entries of one slice. They must be added in ascending order of their keys.
class SliceWriter {
 public:
  SliceWriter(sqlite::Connection& connection, std::int64_t slice)
      : connection_(connection), slice_(slice) {}

  void add(std::string_view key, std::string_view positions);
  /// Writes the last block and the slice's row. `notes`: the number of positions in the slice.
  void finish(int notes);

 private:
  void writeBlock();

  sqlite::Connection& connection_;
  std::int64_t slice_;
  std::int64_t blocks_ = 0;
  std::string firsts_;
  std::string block_;
};

/// Looks up trigrams in a slice.
class SliceReader {
 public:
  /// `firsts`: that column of the slice's row; must outlive the reader.
  SliceReader(sqlite::Connection& connection, std::int64_t slice, std::string_view firsts)
      : connection_(connection), slice_(slice), firsts_(firsts) {}

  /// The positions of the notes that may contain all of the trigrams.
  PositionSet notesWith(const std::vector<Trigram>& trigrams);

 private:
  PositionSet positionsOf(std::string_view key);

  sqlite::Connection& connection_;
  std::int64_t slice_;
  std::string_view firsts_;
};

/// Calls `visit` with the key and the encoded positions of each entry, ascending by key.
void forEachEntry(sqlite::Connection& connection, std::int64_t slice,
                  const std::function<void(std::string_view key, std::string_view)>& visit);

/// A change of one entry: the positions that are added to it, and those that are removed.
struct EntryChange {
  std::string key;
  PositionSet added, removed;
};

/// Changes entries of a slice, ascending by key, and rewrites their blocks. Returns false if there
/// is no such slice or a block would become too large or empty; some changes may have been made
/// then.
bool changeEntries(sqlite::Connection& connection, std::int64_t slice,
                   const std::vector<EntryChange>& changes);

/// Deletes a slice, if it exists.
void removeSlice(sqlite::Connection& connection, std::int64_t slice);

}  // namespace tavimodel
