#include "platform/model/lists/text_walk.h"

#include <fmt/format.h>

#include "platform/model/storage/note_texts.h"

namespace tavimodel {

std::string_view TextWalk::textOf(std::int64_t note) {
  constexpr int near = 4;
  for (int steps = 0; texts_ && steps < near && id_ < note; ++steps) step();
  if (!texts_ || id_ < note) leapTo(note);
  return id_ == note ? texts_->text(1) : std::string_view();
}

void TextWalk::leapTo(std::int64_t note) {
  texts_.reset();
  texts_.emplace(connection_.query(
      fmt::format("SELECT id, {} FROM note WHERE id >= ?1 ORDER BY id", readableText)));
  texts_->bind(1, note);
  step();
}

}  // namespace tavimodel
