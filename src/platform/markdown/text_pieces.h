#pragma once

#include <string_view>
#include <vector>

#include "platform/markdown/document.h"

namespace zephyrdown {

/// A piece of text without markup, as reported by the parser, or a whole link.
struct TextPiece {
  ByteRange range;
  BlockKind kind;      ///< of the innermost block around it; items are paragraphs
  unsigned marks = 0;  ///< bits: its kind (code, HTML, an entity …) and the spans around it
};

/// Reads the document, and appends all pieces of its text in the parser's order.
Document readDocument(std::string_view text, std::vector<TextPiece>& pieces);

}  // namespace zephyrdown
