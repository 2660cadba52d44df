#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/model/lists/string_arena.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The names of the tags of a list, each read and put in order once, however many notes carry it.
/// Tags are numbered as they come.
class TagNames {
 public:
  TagNames(sqlite::Connection& connection, StringArena& arena)
      : connection_(connection), arena_(arena) {}

  /// Reads the names of all tags there are; else each is read when it is first asked for.
  void readAll();
  /// Absent for a tag that is gone.
  std::optional<std::uint32_t> numberOf(std::int64_t tag);

  /// The place of each tag, by its number, in the order of names.
  std::vector<std::uint32_t> ranks() const;
  /// The names by code points.
  std::vector<std::string_view> sorted() const;

 private:
  std::vector<std::uint32_t> numbersInOrder() const;

  sqlite::Connection& connection_;
  StringArena& arena_;
  bool hasAll_ = false;
  std::vector<std::string_view> names_;  // by number
  std::unordered_map<std::int64_t, std::uint32_t> numbers_;
};

}  // namespace tavimodel
