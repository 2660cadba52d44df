#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

namespace zephyrdown {

/// A wiki link as it stands in a text.
struct WikiMention {
  ByteRange range;
  std::string title;  ///< of the note; empty where the link names a heading only
};

/// The wiki link "[[inside]]". Of "Title/Heading|alias" the title is what stands before the first
/// slash; a slash of the title itself is written "\/".
WikiMention wikiMention(ByteRange range, std::string_view inside);

/// The wiki links in `text[stretch]`, plain text on one line. These are the ones that the parser
/// leaves as text since their target takes more than 100 bytes: 34 characters of Chinese do.
std::vector<WikiMention> longWikiLinks(std::string_view text, ByteRange stretch);

}  // namespace zephyrdown
