#pragma once

#include <string_view>
#include <vector>

#include "platform/markdown/document.h"

namespace zephyrdown {

/// A piece of text as the parser gives it, without markup; or a whole link.
struct TextPiece {
  ByteRange range;
  BlockKind kind;      ///< of the innermost block around it; items are paragraphs
  unsigned marks = 0;  ///< bits: its kind (code, HTML, an entity …) and the spans around it
};

/// The document, and all its text in the order of reading.
Document readDocument(std::string_view text, std::vector<TextPiece>& pieces);

}  // namespace zephyrdown
