#pragma once

#include <cstdint>

#include "platform/model/lists/fetch_request.h"
#include "platform/model/lists/note_table.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Answers fetch requests. What decides the road taken:
///
///   - A list of everything is read in the table's order and sorted in memory; a page comes from an
///     index.
///   - A rare term comes from the trigram index; its notes are read, decided, and sorted.
///   - A page of a common term needs no index: the notes are walked in the page's order, reading
///     texts until it is full.
///   - Whatever is left reads all texts, in the table's order.
class NoteFetch {
 public:
  explicit NoteFetch(sqlite::Connection& connection) : connection_(connection) {}

  /// In the request's order, with all that metadata needs.
  NoteTable table(const FetchRequest& request);
  /// How many notes the request finds; its order, offset and limit do not count.
  std::int64_t count(const FetchRequest& request);

 private:
  sqlite::Connection& connection_;
};

}  // namespace tavimodel
