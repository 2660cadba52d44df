#include "domain/text_searcher.h"

#include <string>

#include "platform/text/characters.h"
#include "platform/text/string_search.h"

namespace tavi {
namespace {

using platform::text::ByteRange;

/// The escape of a character that would break the line, or of the backslash; null for others.
const char* escapeOf(char c) {
  switch (c) {
    case '\\':
      return "\\\\";
    case '\n':
      return "\\n";
    case '\t':
      return "\\t";
    default:
      return nullptr;
  }
}

std::string onOneLine(std::string_view text) {
  std::string result;
  result.reserve(text.size() + text.size() / 8);
  std::size_t copied = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char* replacement = escapeOf(text[i]);
    if (replacement == nullptr) continue;
    result.append(text, copied, i - copied);
    result += replacement;
    copied = i + 1;
  }
  result.append(text, copied);
  return result;
}

std::string snippet(std::string_view text, const ByteRange& match, std::size_t context) {
  const std::size_t before = context / 2;
  const std::size_t after = context - before;
  const std::size_t begin = platform::text::stepBackCharacters(text, match.begin, before);
  const std::size_t end = platform::text::stepForwardCharacters(text, match.end, after);
  return onOneLine(text.substr(begin, end - begin));
}

}  // namespace

std::vector<SearchMatch> TextSearcher::search(std::string_view text, std::string_view query,
                                              std::int64_t context,
                                              std::optional<std::int64_t> limit) {
  const platform::text::StringSearch search(query, platform::text::CaseFolding::full);
  const std::size_t most = limit ? static_cast<std::size_t>(*limit) : SIZE_MAX;
  std::vector<SearchMatch> result;
  for (const ByteRange& match : search.findAll(text, most)) {
    result.push_back({static_cast<std::int64_t>(match.begin),
                      snippet(text, match, static_cast<std::size_t>(context))});
  }
  return result;
}

}  // namespace tavi
