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
class Seam {
 public:
  /// Between the lines of `text` up to `end`, a line's end or begin, and those that begin at
  /// `below`. The document is that of the text.
  Seam(std::string_view text, const Document& document, std::size_t end, std::size_t below);

  /// Has read the lines above.
  const BlockScanner& above() const { return above_; }

  /// Whether `inserted` is read there as it is by itself, and the lines around it as they were: in
  /// the same lists and quotes, as the same kind of block, with the same code, links and hashtags,
  /// below the same title. Paragraphs are looked at line by line, lists item by item and tables row
  /// by row: those may join. `before` and `behind` are lines put around `inserted`.
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
  std::size_t cut_;  // the last place above where what stands before it cannot matter
};

}  // namespace zephyrdown
