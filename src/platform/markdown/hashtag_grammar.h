#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

/// The grammar of hashtags within one stretch of plain text; docs/markdown.md describes it for
/// users.
///
///   word    "#" and tag characters, of which one at least is no digit and no ASCII punctuation
///   closed  "#", a name that may hold blanks, and "#" directly after it with no tag character
///           or hash mark next; a closed form wins over a word
///
/// An entity such as "&quot;" counts as the character that it represents.
namespace zephyrdown {

/// Whether a tag without a closing mark can contain the character.
bool isTagCharacter(char32_t scalar);

/// Whether the name is canonical and one word of letters, digits, slashes and "_-+" in ASCII, as
/// most names are: then its hashtag is "#" and the name.
bool isPlainTagName(std::string_view name);

/// The canonical form of a name. Absent if no name is left, if it is longer than 256 bytes or has
/// more than 32 levels, or if it contains an invalid character: a hash mark, a line break, a
/// control character, or one that may be Markdown markup.
std::optional<std::string> canonicalTagName(std::string_view text);

/// Appends the hashtags in `text[stretch]`, which must be within one line, to `found`, in order.
/// `opens`: whether a "#" as the stretch's first byte may start a tag. A tag ends at the stretch's
/// end.
void findHashtags(std::string_view text, ByteRange stretch, bool opens,
                  std::vector<HashtagMention>& found);

}  // namespace zephyrdown
