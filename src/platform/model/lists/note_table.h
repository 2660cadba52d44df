#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "platform/model/lists/listed_row.h"
#include "platform/model/lists/note_view.h"
#include "platform/model/lists/string_arena.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// A snapshot of the notes of a list. A list of a hundred thousand notes takes one scan of each
/// table and about 20 MB; for a short list, tags and files are looked up note by note.
class NoteTable {
 public:
  /// `detailed`: whether to load digests, lengths, to-dos, pins and files, too.
  explicit NoteTable(bool detailed) : detailed_(detailed) {}
  NoteTable(NoteTable&&) = default;
  NoteTable& operator=(NoteTable&&) = default;

  /// The SELECT list of the columns of `noteSummary s` that `add` reads.
  std::string_view columns() const;

  /// Adds the note of the query's current row, whose columns begin at 0.
  void add(const sqlite::Query& query) { addRow(query); }
  void add(const sqlite::Row& row) { addRow(row); }
  void reserve(std::size_t notes);

  /// Loads the tags and, if `detailed`, pins, files and missing text facts. Call it once, after all
  /// notes have been added. Throws sqlite::Error.
  void loadRelations(sqlite::Connection& connection);

  /// The rows in the order of adding.
  const std::vector<ListedRow>& rows() const { return rows_; }
  /// Sets which rows the list has, and their order, as indices into `rows()`. Without it, the list
  /// has all rows.
  void setOrder(std::vector<std::uint32_t> order);

  std::size_t size() const { return ordered_ ? order_.size() : rows_.size(); }
  /// The note at `index` of the list, with its tags in `tags`. Valid until `tags` is changed.
  /// Threads may call this at the same time, each with `tags` of its own.
  NoteView note(std::size_t index, std::vector<std::string_view>& tags) const;

  /// Calls `visit` with each index and text of the list in order. The text of a locked note is
  /// empty. Throws sqlite::Error.
  void forEachText(
      sqlite::Connection& connection,
      const std::function<void(std::size_t index, std::string_view text)>& visit) const;

 private:
  /// A range in one of the vectors below.
  struct Part {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
  };
  /// The data of a row that only a detailed list has.
  struct Details {
    std::string_view digest;
    std::int64_t length = 0;
    std::int64_t todoIncomplete = 0;
    std::int64_t todoCompleted = 0;
    Part pins, files;
  };

  template <class Row>
  void addRow(const Row& row);
  std::size_t rowAt(std::size_t index) const { return ordered_ ? order_[index] : index; }
  void prefetchAfter(std::size_t index) const;
  std::vector<std::uint32_t> rowsByID() const;
  void loadTags(sqlite::Connection& connection);
  void loadPins(sqlite::Connection& connection);
  void loadFiles(sqlite::Connection& connection);
  void loadFacts(sqlite::Connection& connection);

  bool detailed_;
  StringArena arena_;
  std::vector<ListedRow> rows_;
  std::vector<Details> details_;  ///< by row, if `detailed_`
  std::vector<std::uint32_t> order_;
  bool ordered_ = false;
  std::vector<std::string_view> tagNames_;  ///< ascending
  std::vector<std::uint32_t> tags_;         ///< note by note: indices in `tagNames_`, ascending
  std::vector<std::string_view> pins_;      ///< note by note
  std::vector<std::string_view> filenames_;
};

}  // namespace tavimodel
