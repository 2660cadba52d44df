#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The texts of notes that are asked for by ascending id: a walk over all of them, which leaps
/// where the next one is far.
class TextWalk {
 public:
  explicit TextWalk(sqlite::Connection& connection) : connection_(connection) {}

  /// Empty for a locked note and for one that does not exist. Valid until the next call.
  std::string_view textOf(std::int64_t note);

 private:
  void step() { id_ = texts_->step() ? texts_->integer(0) : INT64_MAX; }
  void leapTo(std::int64_t note);

  sqlite::Connection& connection_;
  std::optional<sqlite::Query> texts_;
  std::int64_t id_ = 0;
};

}  // namespace tavimodel
