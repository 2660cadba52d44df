#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/model/lists/string_arena.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The names of the tags in a list. Each is read and sorted once, however many notes have it. Tags
/// are numbered in the order in which they are first used.
class TagNames {
 public:
  TagNames(sqlite::Connection& connection, StringArena& arena)
      : connection_(connection), arena_(arena) {}

  /// Reads the names of all tags in the database. Without it, each name is read on first use.
  void readAll();
  /// The number of the tag with this row id; absent if there is no such tag.
  std::optional<std::uint32_t> numberOf(std::int64_t tag);

  /// Sorts the names in code point order, and returns the rank of each tag by its number. Call it
  /// last: the numbers are invalid afterwards.
  std::vector<std::uint32_t> sort();
  /// The names by number, or after `sort` by rank.
  const std::vector<std::string_view>& names() const { return names_; }

 private:
  sqlite::Connection& connection_;
  StringArena& arena_;
  std::optional<sqlite::Query> name_;  // selects the name of one tag; made on first use
  bool hasAll_ = false;
  std::vector<std::string_view> names_;  // by number, or by rank
  // By row id. The table has those of `readAll` that are small, as nearly all are.
  static constexpr std::int64_t mostInTable = 1 << 16;
  static constexpr std::uint32_t absent = UINT32_MAX;
  std::vector<std::uint32_t> table_;
  std::unordered_map<std::int64_t, std::uint32_t> numbers_;
};

}  // namespace tavimodel
