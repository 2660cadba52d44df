#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

namespace zephyrdown {

/// An occurrence of a link, image or wiki link in a text.
struct LinkMention {
  enum class Kind { link, image, wikiLink };
  Kind kind = Kind::link;
  ByteRange range;
  ByteRange label;  ///< between the brackets
  /// The destination of an inline link, as written; absent for reference links and wiki links.
  std::optional<ByteRange> destinationRange;
  std::string
      destination;  ///< without escapes and entities, not percent-decoded; empty for wiki links
};

/// A piece of HTML: an inline tag, or a line of an HTML block.
struct HTMLMention {
  ByteRange range;
  bool isBlock = false;
};

/// The parts of a text that an importer has to convert.
struct Outline {
  std::vector<LinkMention> links;  ///< ascending by begin; one may be in another's label
  std::vector<HTMLMention> html;   ///< ascending by begin
  std::vector<ByteRange> tables;   ///< top-level tables, from their first to their last text
  int titleLevel = 0;              ///< 1 to 6, of the heading that is the title; 0 if there is none
  std::size_t bodyBegin = 0;       ///< after a byte order mark and front matter
};

/// Parses a text, and returns its outline.
Outline outlineOf(std::string_view text);

}  // namespace zephyrdown
