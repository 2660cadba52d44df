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

// A slice of the search index tells, for each trigram of its notes' texts, at which positions the
// notes with it are. It is written once, in blocks of a page of the database, so that it is as
// quickly rewritten: that is how a text leaves it.
//
// A block is a sequence of entries in the order of their keys. An entry is a byte with the length
// of the key, the key, a byte with the length of the positions, and these (see PositionList). The
// key is the trigram in UTF-8, or empty: the notes whose text has too many trigrams to tell any.

/// Writes the entries of one slice, in the order of their keys.
class SliceWriter {
 public:
  SliceWriter(sqlite::Connection& connection, std::int64_t slice)
      : connection_(connection), slice_(slice) {}

  void add(std::string_view key, std::string_view positions);
  /// Writes the rest, and the slice's own row. `notes`: how many positions it has.
  void finish(int notes);

 private:
  void writeBlock();

  sqlite::Connection& connection_;
  std::int64_t slice_;
  std::int64_t blocks_ = 0;
  std::string firsts_;
  std::string block_;
};

/// Reads a slice.
class SliceReader {
 public:
  /// `firsts`: of the slice's row; must outlive the reader.
  SliceReader(sqlite::Connection& connection, std::int64_t slice, std::string_view firsts)
      : connection_(connection), slice_(slice), firsts_(firsts) {}

  /// The notes that may have all of the trigrams.
  PositionSet notesWith(const std::vector<Trigram>& trigrams);

 private:
  PositionSet positionsOf(std::string_view key);

  sqlite::Connection& connection_;
  std::int64_t slice_;
  std::string_view firsts_;
};

/// Calls `visit` with the key and the positions of each entry, in the order of their keys.
void forEachEntry(sqlite::Connection& connection, std::int64_t slice,
                  const std::function<void(std::string_view key, std::string_view)>& visit);

/// Removes a slice, if it is there.
void removeSlice(sqlite::Connection& connection, std::int64_t slice);

}  // namespace tavimodel
