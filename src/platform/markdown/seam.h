#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/markdown/document.h"

/// Where two texts are put one below the other: whether Markdown still reads them as two.
namespace zephyrdown {

/// What Markdown sees at one side of the seam.
struct Side {
  std::optional<BlockKind> kind;  ///< nothing where there is no block
  std::string_view line = {};     ///< the first line; not known of the text above
};

/// Of the text above the seam, and of the one below. They read the text.
Side lowerSideOf(std::string_view text);
Side upperSideOf(std::string_view text);

/// A paragraph of ordinary words, above or below.
Side paragraphSide();
bool isPlainParagraph(const Side& side);

/// Whether the two need a blank line between them to stay two.
bool needBlankLine(const Side& above, const Side& below);

/// A line that closes the code or HTML that `text` leaves open, so that what follows is no part of
/// it; empty where nothing is open. `last`: its lower side.
std::string closingLine(std::string_view text, const Side& last);

}  // namespace zephyrdown
