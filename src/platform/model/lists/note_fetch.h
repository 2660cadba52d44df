#pragma once

#include <cstdint>

#include "platform/model/lists/fetch_request.h"
#include "platform/model/lists/note_table.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Executes fetch requests. The strategy depends on the request:
///
///   - A complete list is read in table order and sorted in memory; a page comes from an index.
///   - For a rare term, the candidates of the trigram index are checked and sorted.
///   - For a page of a common term, notes are scanned in the page's order, checking their texts,
///     until the page is full.
///   - Otherwise all texts are read, in table order.
class NoteFetch {
 public:
  explicit NoteFetch(sqlite::Connection& connection) : connection_(connection) {}

  /// Returns the notes in the request's order, with all data of their metadata. Throws
  /// sqlite::Error.
  NoteTable table(const FetchRequest& request);
  /// Counts the notes that the request finds, ignoring its offset and limit. Throws sqlite::Error.
  std::int64_t count(const FetchRequest& request);

 private:
  sqlite::Connection& connection_;
};

}  // namespace tavimodel
