#include "platform/markdown/parser_input.h"

#include <algorithm>

#include "platform/markdown/ascii.h"
#include "platform/markdown/hashtag_grammar.h"
#include "platform/markdown/lines.h"
#include "platform/markdown/link_locator.h"
#include "platform/markdown/paragraph_starts.h"

namespace zephyrdown {
namespace {

constexpr char kPunctuation = ',';  // flanks emphasis like a bracket
constexpr char kLetter = 'x';

/// The copy, which is made for the first byte that is masked.
std::string& copyOf(std::string_view body, std::optional<std::string>& copy) {
  constexpr std::size_t kRoom = 64;  // one byte in so many may be added without another copy
  if (!copy) {
    copy.emplace().reserve(body.size() + body.size() / kRoom);
    copy->append(body);
  }
  return *copy;
}

/// The offset of the "]" of a footnote's label at `at`, or npos.
std::size_t footnoteLabelEnd(std::string_view body, std::size_t at) {
  if (isEscaped(body, at)) return npos;
  const std::size_t end = body.find_first_of(" \t\r\n[]", at + 2);
  return end != npos && body[end] == ']' && end > at + 2 ? end : npos;
}

void maskFootnotes(std::string_view body, std::optional<std::string>& copy) {
  for (std::size_t at = body.find("[^"); at != npos; at = body.find("[^", at + 1)) {
    const std::size_t end = footnoteLabelEnd(body, at);
    if (end == npos) continue;
    std::string& masked = copyOf(body, copy);
    masked[at] = masked[end] = kPunctuation;
  }
}

/// The brackets inside of "[[label]](destination)", a link whose label holds brackets.
void maskLabelsInBrackets(std::string_view body, std::optional<std::string>& copy) {
  constexpr std::size_t kLongestTail = 1000;
  for (std::size_t end = body.find("]]("); end != npos; end = body.find("]](", end + 1)) {
    const std::size_t begin = body.substr(0, end).find_last_of("[]\r\n");
    if (begin == npos || begin == 0 || body.substr(begin - 1, 2) != "[[") continue;
    if (isEscaped(body, begin - 1)) continue;
    if (!isInlineTail(body.substr(0, end + kLongestTail), end + 2)) continue;
    std::string& masked = copyOf(body, copy);
    masked[begin] = masked[end] = kPunctuation;
  }
}

void maskLineOfHashtags(std::string_view body, ByteRange line, std::optional<std::string>& copy) {
  std::vector<HashtagMention> tags;
  findHashtags(body, line, /*opens=*/true, tags);
  for (const HashtagMention& tag : tags) {
    if (tag.name.find('_') == npos) continue;
    char* masked = copyOf(body, copy).data();
    std::replace(masked + tag.range.begin, masked + tag.range.end, '_', kLetter);
  }
}

void maskHashtags(std::string_view body, std::optional<std::string>& copy) {
  if (body.find('_') == npos) return;
  for (std::size_t hash = body.find('#'); hash != npos; hash = body.find('#', hash)) {
    const ByteRange line{lineBegin(body, hash), lineEnd(body, hash)};
    maskLineOfHashtags(body, line, copy);
    hash = line.end;
  }
}

std::size_t countOf(std::string_view piece, std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = text.find(piece); at != npos; at = text.find(piece, at + 1)) ++count;
  return count;
}

/// The parser searches for a bracket's line from the start of its paragraph. After this many steps,
/// links are read as text; with one link per line, that is a paragraph of some 14,000 lines.
void maskEndlessParagraphs(std::string_view body, std::optional<std::string>& copy) {
  constexpr std::size_t kMostSteps = 100'000'000;
  const std::size_t brackets = countOf("]", body);
  if (brackets * body.size() <= kMostSteps) return;
  if (brackets * (countOf("\n", body) + countOf("\r", body)) <= kMostSteps) return;
  ParagraphStarts starts;
  std::size_t lines = 0, steps = 0;
  for (std::size_t line = 0; line < body.size(); line = nextLine(body, line)) {
    const std::string_view here = body.substr(line, lineEnd(body, line) - line);
    if (starts.isStart(here)) lines = 0;
    ++lines;
    for (std::size_t at = here.find(']'); at != npos; at = here.find(']', at + 1)) {
      steps += lines;
      if (steps <= kMostSteps) continue;
      copyOf(body, copy)[line + at] = kPunctuation;
    }
  }
}

/// For each line the parser visits all open quotes and lists. Levels deeper than some hundred on
/// one line, by their marks or blanks, are read as text.
void maskDeepNesting(std::string_view body, std::optional<std::string>& copy) {
  constexpr std::size_t kDeepest = 200;
  for (std::size_t begin = 0, end = 0; begin < body.size(); begin = behindLineBreak(body, end)) {
    end = lineEnd(body, begin);
    const std::string_view line = body.substr(begin, end - begin);
    if (line.size() <= kDeepest || line.find_first_not_of(" \t*") == npos ||
        line.find_first_not_of(" \t-") == npos) {
      continue;  // a rule has marks like those of lists
    }
    std::size_t at = 0;
    while (at < line.size()) {
      const std::size_t mark = isBlank(line[at]) ? at : containerMark(line, at);
      if (mark == npos) break;
      if (mark > kDeepest && !isBlank(line[mark])) {
        copyOf(body, copy)[begin + mark] = kLetter;
        break;
      }
      at = mark + 1;
    }
  }
}

}  // namespace

bool hasEndlessAddresses(std::string_view body) {
  constexpr std::size_t kMostSteps = 200'000'000;
  if (body.size() * body.size() <= kMostSteps) return false;
  ParagraphStarts starts;
  std::size_t length = 0, addresses = 0, steps = 0;
  for (std::size_t line = 0; line < body.size(); line = nextLine(body, line)) {
    const std::string_view here = body.substr(line, lineEnd(body, line) - line);
    if (starts.isStart(here)) {
      steps += length * addresses;
      length = addresses = 0;
    }
    length += here.size();
    addresses += countOf("://", here) + countOf("www.", here);
  }
  return steps + length * addresses > kMostSteps;
}

std::optional<std::string> maskedForParser(std::string_view body) {
  std::optional<std::string> copy;
  maskFootnotes(body, copy);
  maskLabelsInBrackets(body, copy);
  maskHashtags(body, copy);
  maskEndlessParagraphs(body, copy);
  maskDeepNesting(body, copy);
  return copy;
}

std::string maskedForPlainReading(std::string_view input) {
  std::string copy(input);
  for (std::size_t at = copy.find("]:"); at != npos; at = copy.find("]:", at + 2)) {
    copy[at + 1] = kPunctuation;
  }
  return copy;
}

}  // namespace zephyrdown
