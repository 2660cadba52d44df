#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

namespace zephyrdown {

/// A link, image or wiki link as it stands in a text.
struct LinkMention {
  enum class Kind { link, image, wikiLink };
  Kind kind = Kind::link;
  ByteRange range;
  ByteRange label;  ///< between the brackets; of a wiki link all that stands there
  /// The destination as it is written, of an inline link; absent for references and wiki links.
  std::optional<ByteRange> destinationRange;
  std::string
      destination;  ///< without escapes and entities, not percent-decoded; empty for wiki links
};

/// A piece of HTML: a tag in a line of text, or a line of an HTML block.
struct HTMLMention {
  ByteRange range;
  bool isBlock = false;
};

/// What a program that brings a text in from elsewhere has to look at.
struct Outline {
  std::vector<LinkMention> links;  ///< ascending by begin; one may stand in another's label
  std::vector<HTMLMention> html;   ///< ascending by begin
  std::vector<ByteRange> tables;   ///< that stand in no other block; from first to last text
  int titleLevel = 0;  ///< 1 to 6: of the heading that gives the title; 0: there is no heading
  std::size_t bodyBegin = 0;  ///< behind a byte order mark and front matter
};

Outline outlineOf(std::string_view text);

}  // namespace zephyrdown
