#include "platform/markdown/hashtag.h"

#include <algorithm>

#include "platform/markdown/ascii.h"
#include "platform/markdown/document.h"
#include "platform/markdown/hashtag_grammar.h"
#include "platform/text/utf8.h"

namespace zephyrdown {
namespace {

/// Whether `hashtag` by itself is read as one occurrence of `name`.
bool isReadBack(const std::string& hashtag, std::string_view name) {
  std::vector<HashtagMention> tags;
  findHashtags(hashtag, {0, hashtag.size()}, /*opens=*/true, tags);
  return tags.size() == 1 && tags[0].range.end == hashtag.size() && tags[0].name == name;
}

/// Whether all characters are letters or others that cannot be part of an entity, an address or
/// markup.
bool hasNoMarkup(std::string_view name) {
  return std::all_of(name.begin(), name.end(), [](char c) {
    const unsigned char byte = byteOf(c);
    return byte >= 0x80 || isASCIILetter(byte) || isASCIIDigit(byte) ||
           std::string_view("_-/+ ").find(c) != std::string_view::npos;
  });
}

/// Whether the Markdown parser also reads it as `name`, between other copies of it.
bool isReadBackInText(const std::string& hashtag, std::string_view name) {
  const Document line = readDocument("#a " + hashtag + " #b");
  return line.hashtags.size() == 3 && line.hashtags[1].name == name &&
         readDocument(hashtag).hashtags.size() == 1;
}

std::string_view withoutSurroundings(std::string_view text) {
  for (std::size_t size = text.size() + 1; text.size() < size;) {
    size = text.size();
    text = platform::text::trimmingWhitespaceAndNewlines(text);
    while (text.starts_with('#')) text.remove_prefix(1);
    while (text.ends_with('#')) text.remove_suffix(1);
  }
  return text;
}

}  // namespace

std::optional<std::string> ZDKHashtag::sanitizeTagName(std::string_view text) {
  text = withoutSurroundings(text);
  auto name = canonicalTagName(text);
  return name && hashtagStringForTagName(*name) ? name : std::nullopt;
}

std::optional<std::string> ZDKHashtag::hashtagStringForTagName(std::string_view name) {
  const std::string word = std::string("#").append(name);
  if (isPlainTagName(name)) return word;
  for (const std::string& hashtag : {word, word + "#"}) {
    if (!isReadBack(hashtag, name)) continue;
    if (hasNoMarkup(name) || isReadBackInText(hashtag, name)) return hashtag;
  }
  return std::nullopt;
}

bool ZDKHashtag::isTagOrDescendant(std::string_view name, std::string_view tag) {
  return name.starts_with(tag) && (name.size() == tag.size() || name[tag.size()] == '/');
}

std::optional<std::string> ZDKHashtag::renamedTagName(std::string_view name, std::string_view from,
                                                      std::string_view to) {
  if (!isTagOrDescendant(name, from)) return std::nullopt;
  return std::string(to).append(name.substr(from.size()));
}

}  // namespace zephyrdown
