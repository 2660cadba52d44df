#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

/// The grammar of hashtags inside one stretch of plain text; docs/markdown.md tells it to users.
///
///   word    "#" and tag characters, of which one at least is no digit and no ASCII punctuation
///   closed  "#", a name that may hold blanks, and "#" directly behind it with no tag character
///           or hash mark next; a closed form wins over a word
///
/// An entity such as "&quot;" counts as the character that it stands for.
namespace zephyrdown {

/// Whether the character can stand in a tag without a closing mark.
bool isTagCharacter(char32_t scalar);

/// The canonical form of what stands between the marks of a hashtag, or nothing when no name is
/// left, it is longer than 256 bytes or deeper than 32 levels, or it holds a character that a name
/// cannot hold: a hash mark, a line break, a control, or one that Markdown would read as markup.
std::optional<std::string> canonicalTagName(std::string_view text);

/// Adds the hashtags in `text[stretch]`, which lies on one line, to `found`, in order.
/// `opens`: whether a "#" as the stretch's first byte may start a tag. What stands behind the
/// stretch is no part of a tag.
void findHashtags(std::string_view text, ByteRange stretch, bool opens,
                  std::vector<HashtagMention>& found);

}  // namespace zephyrdown
