#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

namespace zephyrdown {

/// An occurrence of a wiki link in a text.
struct WikiMention {
  ByteRange range;
  std::string title;  ///< of the note; empty if the link has only a heading
};

/// Parses the wiki link "[[inside]]". The title of "Title/Heading|alias" ends at the first slash; a
/// slash in a title is written "\/".
WikiMention wikiMention(ByteRange range, std::string_view inside);

/// The wiki links in `text[stretch]`, plain text on one line. The parser does not recognize links
/// whose target has more than 100 bytes, which are only 34 Chinese characters.
std::vector<WikiMention> longWikiLinks(std::string_view text, ByteRange stretch);

}  // namespace zephyrdown
