#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Reads texts of notes by ascending id. It scans the table, and seeks if the next note is far
/// away.
class TextWalk {
 public:
  explicit TextWalk(sqlite::Connection& connection) : connection_(connection) {}

  /// The note's text, empty for a locked or missing note. Valid until the next call. Throws
  /// sqlite::Error.
  std::string_view textOf(std::int64_t note);

 private:
  void step() { id_ = texts_->step() ? texts_->integer(0) : INT64_MAX; }
  void leapTo(std::int64_t note);

  sqlite::Connection& connection_;
  std::optional<sqlite::Query> texts_;
  std::int64_t id_ = 0;
};

}  // namespace tavimodel
