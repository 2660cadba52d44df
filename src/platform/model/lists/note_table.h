#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "platform/model/lists/note_view.h"
#include "platform/model/lists/string_arena.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The notes of a list, as they were when it was read. A list of a hundred thousand notes is a few
/// walks over tables and a few blocks of memory; what belongs to the notes of a short one is looked
/// up.
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
  void reserve(std::size_t notes) { rows_.reserve(notes); }

  /// Loads the tags, and in detail the pins, files and missing facts of all notes: once, when all
  /// are added, and before they are put in order.
  void loadRelations(sqlite::Connection& connection);

  /// The rows in the order in which they were added.
  const std::vector<NoteView>& rows() const { return rows_; }
  /// Which rows the list shows, and in which order. All, as they were added, until it is set.
  void setOrder(std::vector<std::size_t> order);

  std::size_t size() const { return ordered_ ? order_.size() : rows_.size(); }
  const NoteView& operator[](std::size_t index) const {
    return rows_[ordered_ ? order_[index] : index];
  }

  /// Fetches a row into the cache: in the list's order the rows lie all over the memory.
  void prefetch(std::size_t index) const {
    if (index >= size()) return;
    const NoteView& row = (*this)[index];
    __builtin_prefetch(&row);
    __builtin_prefetch(reinterpret_cast<const char*>(&row) + 64);
    __builtin_prefetch(reinterpret_cast<const char*>(&row) + 128);
    if (index < 4) return;
    // This one has arrived by now; its texts lie side by side.
    const NoteView& near = (*this)[index - 4];
    __builtin_prefetch(near.uniqueIdentifier.data());
    __builtin_prefetch(near.title.data());
    __builtin_prefetch(near.tags.data());
  }

  /// Calls `visit` with each index and the note's text, in order, one text at a time.
  void forEachText(
      sqlite::Connection& connection,
      const std::function<void(std::size_t index, std::string_view text)>& visit) const;

 private:
  void loadTags(sqlite::Connection& connection);
  void loadPins(sqlite::Connection& connection);
  void loadFiles(sqlite::Connection& connection);
  void loadFacts(sqlite::Connection& connection);

  bool detailed_;
  StringArena arena_;
  std::vector<NoteView> rows_;
  std::vector<std::size_t> order_;
  bool ordered_ = false;
  std::vector<std::string_view> tags_;
  std::vector<std::string_view> pins_;
  std::vector<std::string_view> filenames_;
};

}  // namespace tavimodel
