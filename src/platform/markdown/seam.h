#pragma once

#include <optional>
#include <string_view>

#include "platform/markdown/block_scanner.h"
#include "platform/markdown/document.h"

/// Where two texts are put one below the other: whether Markdown still reads them as two.
namespace zephyrdown {

/// What Markdown sees at one side of the seam.
struct Side {
  std::optional<BlockKind> kind;  ///< absent where there is no block
  std::string_view line = {};     ///< the first line; empty for the text above
};

/// Of the text above the seam, and of the one below. They read the text.
Side lowerSideOf(const BlockScanner& above);
Side upperSideOf(std::string_view text);

/// A paragraph of ordinary words, above or below.
Side paragraphSide();
bool isPlainParagraph(const Side& side);

/// Whether the two usually need a blank line between them to stay two.
bool needBlankLine(const Side& above, const Side& below);

/// A scanner that has read all lines of `text`.
BlockScanner scanned(std::string_view text);

/// A place between two lines of a text.
struct Seam {
  BlockScanner above;      ///< has read the lines above
  std::string_view below;  ///< the lines below

  /// Whether `inserted` is read there as it is by itself, and the lines below as they were:
  /// no block takes in a line of another. Paragraphs are looked at line by line, as are lists item
  /// by item and tables row by row: those may join. `before` and `behind` are put around
  /// `inserted`; all three are lines, and only the last one has no line break where none follows.
  bool holds(std::string_view before, std::string_view inserted, std::string_view behind) const;
};

}  // namespace zephyrdown
