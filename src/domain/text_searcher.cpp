#include "domain/text_searcher.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/text/characters.h"
#include "platform/text/folding.h"
#include "platform/text/string_search.h"

namespace tavi {
namespace {

using platform::text::ByteRange;
using platform::text::CaseFolding;
using platform::text::StringSearch;

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

ByteRange withContext(std::string_view text, const ByteRange& match, std::size_t context) {
  const std::size_t before = context / 2;
  const std::size_t after = context - before;
  return {platform::text::stepBackCharacters(text, match.begin, before),
          platform::text::stepForwardCharacters(text, match.end, after)};
}

SearchMatch matchOf(std::string_view text, const ByteRange& snippet, std::size_t offset) {
  return {static_cast<std::int64_t>(offset),
          onOneLine(text.substr(snippet.begin, snippet.end - snippet.begin))};
}

std::size_t most(std::optional<std::int64_t> limit) {
  return limit ? static_cast<std::size_t>(*limit) : SIZE_MAX;
}

/// The offset of the last ASCII character up to `limit`: a search may begin there whatever precedes
/// it. 0 if there is none.
std::size_t lastASCII(std::string_view part, std::size_t limit) {
  while (limit > 0 && static_cast<unsigned char>(part[limit]) >= 0x80) --limit;
  return limit;
}

/// Searches a text part by part. Parts overlap, so that each match is found in a part that has its
/// context too.
class PartSearch {
 public:
  PartSearch(const TextInParts& text, std::string_view query, std::size_t context)
      : text_(text), search_(query, CaseFolding::full), context_(context) {
    // A scalar of the text has at least one in comparison form, and at most four bytes.
    const std::size_t longestMatch = 4 * platform::text::foldedForSearch(query).size();
    margin_ = longestMatch + 16 * context + 64;
  }

  /// Absent where a match with its context may be longer than the parts overlap.
  std::optional<std::vector<SearchMatch>> matches(std::size_t most) {
    while (result_.size() < most) {
      const std::size_t end = std::min(text_.size, begin_ + text_.partSize);
      const bool isLast = end == text_.size;
      const std::string_view part = text_.read(begin_, end);
      const std::size_t settled = isLast ? part.size() : lastASCII(part, part.size() - margin_);
      if (begin_ + settled <= from_ && !isLast) return std::nullopt;
      if (!addMatches(part, settled, isLast, most)) return std::nullopt;
      if (isLast) break;
      from_ = std::max(from_, begin_ + settled);
      const std::size_t searched = from_ - begin_;
      if (searched > margin_) begin_ += lastASCII(part, searched - margin_);
    }
    return std::move(result_);
  }

 private:
  /// Adds the matches that begin before `settled`, an offset in the part: what follows is searched
  /// again. False if the context of one is not within the part.
  bool addMatches(std::string_view part, std::size_t settled, bool isLast, std::size_t most) {
    const std::size_t from = from_ - begin_;
    for (ByteRange match : search_.findAll(part.substr(from), most - result_.size())) {
      match = {from + match.begin, from + match.end};
      if (match.begin >= settled) break;
      const ByteRange snippet = withContext(part, match, context_);
      // Whether a character ends there depends on the next scalar, of up to four bytes.
      const bool isWithin =
          (snippet.begin > 0 || begin_ == 0) && (snippet.end + 4 <= part.size() || isLast);
      if (!isWithin) return false;
      result_.push_back(matchOf(part, snippet, begin_ + match.begin));
      from_ = begin_ + match.end;
    }
    return true;
  }

  const TextInParts& text_;
  StringSearch search_;
  std::size_t context_;
  std::size_t margin_;     // how far a match and its context may reach, in bytes
  std::size_t begin_ = 0;  // of the part
  std::size_t from_ = 0;   // where matches may begin
  std::vector<SearchMatch> result_;
};

}  // namespace

std::vector<SearchMatch> TextSearcher::search(std::string_view text, std::string_view query,
                                              std::int64_t context,
                                              std::optional<std::int64_t> limit) {
  const StringSearch search(query, CaseFolding::full);
  std::vector<SearchMatch> result;
  for (const ByteRange& match : search.findAll(text, most(limit))) {
    const ByteRange snippet = withContext(text, match, static_cast<std::size_t>(context));
    result.push_back(matchOf(text, snippet, match.begin));
  }
  return result;
}

std::vector<SearchMatch> TextSearcher::search(const TextInParts& text, std::string_view query,
                                              std::int64_t context,
                                              std::optional<std::int64_t> limit) {
  const std::size_t longest = text.partSize / 64;
  if (query.size() <= longest && static_cast<std::size_t>(context) <= longest) {
    PartSearch search(text, query, static_cast<std::size_t>(context));
    if (auto matches = search.matches(most(limit))) return *std::move(matches);
  }
  return search(text.read(0, text.size), query, context, limit);
}

}  // namespace tavi
