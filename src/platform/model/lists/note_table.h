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

/// The notes of a list, as they were when it was read. A list of a hundred thousand notes takes a
/// walk over each table and some 20 MB; what belongs to the notes of a short one is looked up.
class NoteTable {
 public:
  /// `detailed`: whether the notes have digest, length, to-dos, pins and files.
  explicit NoteTable(bool detailed) : detailed_(detailed) {}
  NoteTable(NoteTable&&) = default;
  NoteTable& operator=(NoteTable&&) = default;

  /// The columns of `noteSummary s` that `add` reads, for a SELECT list.
  std::string_view columns() const;

  /// Adds the note under the query's cursor; its columns begin at 0.
  void add(const sqlite::Query& query);
  void reserve(std::size_t notes);

  /// Loads the tags, and in detail the pins, files and missing facts of all notes: once, when all
  /// have been added.
  void loadRelations(sqlite::Connection& connection);

  /// The rows in the order in which they were added.
  const std::vector<ListedRow>& rows() const { return rows_; }
  /// Which rows the list shows, as indices into `rows()`, in its order. Until it is set: all.
  void setOrder(std::vector<std::uint32_t> order);

  std::size_t size() const { return ordered_ ? order_.size() : rows_.size(); }
  /// The note at this place of the list. Valid until the next call.
  NoteView operator[](std::size_t index) const;

  /// Calls `visit` with each index and the note's text, in order, one text at a time.
  void forEachText(
      sqlite::Connection& connection,
      const std::function<void(std::size_t index, std::string_view text)>& visit) const;

 private:
  /// A part of one of the sequences below.
  struct Part {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
  };
  struct Details {
    std::string_view digest;
    std::int64_t length = 0;
    std::int64_t todoIncomplete = 0;
    std::int64_t todoCompleted = 0;
    Part pins, files;
  };

  std::size_t rowAt(std::size_t index) const { return ordered_ ? order_[index] : index; }
  std::vector<std::uint32_t> rowsByID() const;
  void loadTags(sqlite::Connection& connection);
  void loadPins(sqlite::Connection& connection);
  void loadFiles(sqlite::Connection& connection);
  void loadFacts(sqlite::Connection& connection);

  bool detailed_;
  StringArena arena_;
  std::vector<ListedRow> rows_;
  std::vector<Details> details_;  ///< of each row, when detailed
  std::vector<std::uint32_t> order_;
  bool ordered_ = false;
  std::vector<std::string_view> tagNames_;  ///< ascending
  std::vector<std::uint32_t> tags_;         ///< note by note, as places in `tagNames_`, ascending
  std::vector<std::string_view> pins_;      ///< note by note
  std::vector<std::string_view> filenames_;
  mutable std::vector<std::string_view> shownTags_;  ///< of the note that was asked for last
};

}  // namespace tavimodel
