#include "platform/markdown/wiki_links.h"

#include <algorithm>

#include "platform/markdown/entities.h"
#include "platform/text/utf8.h"

namespace zephyrdown {

WikiMention wikiMention(ByteRange range, std::string_view inside) {
  const std::string_view target = inside.substr(0, inside.find('|'));
  std::size_t end = 0;
  while (end < target.size() && target[end] != '/') end += target[end] == '\\' ? 2 : 1;
  const std::string title = unescaped(target.substr(0, std::min(end, target.size())));
  return {range, std::string(platform::text::trimmingBlanks(title))};
}

std::vector<WikiMention> longWikiLinks(std::string_view text, ByteRange stretch) {
  constexpr std::size_t kLongestForParser = 100;
  std::vector<WikiMention> found;
  const std::string_view upToEnd = text.substr(0, stretch.end);
  for (std::size_t at = upToEnd.find("[[", stretch.begin); at != std::string_view::npos;) {
    const std::size_t end = upToEnd.find_first_of("[]", at + 2);
    if (end == std::string_view::npos) break;
    const std::string_view inside = upToEnd.substr(at + 2, end - at - 2);
    const bool isLong = inside.substr(0, inside.find('|')).size() > kLongestForParser;
    if (isLong && upToEnd.substr(end).starts_with("]]")) {
      found.push_back(wikiMention({at, end + 2}, inside));
    }
    at = upToEnd.find("[[", end);
  }
  return found;
}

}  // namespace zephyrdown
