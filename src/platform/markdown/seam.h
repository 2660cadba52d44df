#pragma once

#include <optional>
#include <string_view>

#include "platform/markdown/block_scanner.h"
#include "platform/markdown/document.h"

/// Checks whether Markdown still reads two texts as two if one is placed below the other.
namespace zephyrdown {

/// The block at one side of the seam.
struct Side {
  std::optional<BlockKind> kind;  ///< absent if there is no block
  std::string_view line = {};     ///< the first line; empty for the text above
};

/// The sides of the texts above and below the seam. `upperSideOf` parses its text.
Side lowerSideOf(const BlockScanner& above);
Side upperSideOf(std::string_view text);

/// The side of a paragraph of ordinary words, above or below.
Side paragraphSide();
/// Whether the side is a paragraph whose first line does not turn a paragraph above into a heading
/// or a table.
bool isPlainParagraph(const Side& side);

/// Whether the two sides usually need a blank line between them to stay separate blocks.
bool needBlankLine(const Side& above, const Side& below);

/// A scanner that has read all lines of `text`.
BlockScanner scanned(std::string_view text);

/// A place between two lines of a text.
class Seam {
 public:
  /// The place between the lines of `text` up to `end`, the start or end of a line, and the lines
  /// from `below` on. `document` must be that of the text.
  Seam(std::string_view text, const Document& document, std::size_t end, std::size_t below);

  /// A scanner that has read the lines above.
  const BlockScanner& above() const { return above_; }

  /// Whether `inserted` is read here as it is by itself, and the lines around it as before: in the
  /// same lists and quotes, as the same kind of block, with the same code, links and hashtags,
  /// below the same title. Adjacent paragraphs, lists and tables may merge, since these are
  /// compared by lines, items and rows. `before` and `behind` are lines added around `inserted`.
  bool holds(std::string_view before, std::string_view inserted, std::string_view behind) const;

 private:
  bool keepsPlaces(std::string_view before, std::string_view inserted, std::string_view behind,
                   std::size_t& end) const;
  bool keepsReadings(std::string_view before, std::string_view inserted, std::string_view behind,
                     std::size_t end) const;
  bool keepsTitle(const std::string& lines, std::string_view inserted, std::size_t end) const;

  std::string_view text_;
  const Document& document_;
  std::size_t begin_, end_, below_;
  BlockScanner above_;
  std::size_t cut_;  // the last offset above `end_` before which no line affects those after it
};

}  // namespace zephyrdown
