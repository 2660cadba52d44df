#include "platform/markdown/link_locator.h"

#include <algorithm>

#include "platform/markdown/ascii.h"
#include "platform/markdown/entities.h"
#include "platform/markdown/lines.h"

namespace zephyrdown {
namespace {

/// The part after the brackets of an inline link: "(destination "title")".
struct InlineTail {
  ByteRange destination;
  std::size_t end;
};

/// Reads an inline tail. On continuation lines of a paragraph, ">" marks of quotes may precede it.
class TailReader {
 public:
  TailReader(std::string_view text, std::size_t at) : text_(text), at_(at) {}

  std::optional<InlineTail> read() {
    if (!take('(')) return std::nullopt;
    skipSpace();
    const auto destination = readDestination();
    if (!destination) return std::nullopt;
    skipSpace();
    if (at_ < text_.size() && std::string_view("\"'(").find(text_[at_]) != npos && !skipTitle()) {
      return std::nullopt;
    }
    skipSpace();
    if (!take(')')) return std::nullopt;
    return InlineTail{*destination, at_};
  }

 private:
  bool take(char c) {
    if (at_ >= text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }

  void skipSpace() {
    bool broken = false;
    while (at_ < text_.size()) {
      const char c = text_[at_];
      if (!isBlank(c) && !isLineBreak(c) && !(broken && c == '>')) break;
      broken |= isLineBreak(c);
      ++at_;
    }
  }

  std::optional<ByteRange> readDestination() { return take('<') ? readAngled() : readBare(); }

  std::optional<ByteRange> readAngled() {
    const std::size_t begin = at_;
    for (; at_ < text_.size() && !isLineBreak(text_[at_]) && text_[at_] != '<'; ++at_) {
      if (text_[at_] == '>') return ByteRange{begin, at_++};
      skipEscape();
    }
    return std::nullopt;
  }

  std::optional<ByteRange> readBare() {
    const std::size_t begin = at_;
    int depth = 0;
    for (; at_ < text_.size(); ++at_) {
      const auto c = byteOf(text_[at_]);
      if (c <= ' ' || c == 0x7F || (c == ')' && depth == 0)) break;
      if (c == '(') ++depth;
      if (c == ')') --depth;
      skipEscape();
    }
    if (depth != 0) return std::nullopt;
    return ByteRange{begin, at_};
  }

  bool skipTitle() {
    const char closer = text_[at_] == '(' ? ')' : text_[at_];
    for (++at_; at_ < text_.size(); ++at_) {
      if (take(closer)) return true;
      if (isLineBreak(text_[at_]) && endsParagraph()) return false;
      skipEscape();
    }
    return false;
  }

  bool endsParagraph() const {
    const std::size_t line = behindLineBreak(text_, at_);
    return isBlankText(text_.substr(line, lineEnd(text_, line) - line));
  }

  void skipEscape() {
    if (text_[at_] != '\\' || at_ + 1 >= text_.size()) return;
    if (isASCIIPunctuation(byteOf(text_[at_ + 1]))) ++at_;
  }

  std::string_view text_;
  std::size_t at_;
};

std::optional<InlineTail> readInlineTail(std::string_view text, std::size_t at) {
  return TailReader(text, at).read();
}

/// The offset after "[label]" at `at`; `at` if there is no label.
std::size_t behindReferenceLabel(std::string_view text, std::size_t at) {
  constexpr std::size_t kLongestLabel = 1001;
  if (at >= text.size() || text[at] != '[') return at;
  const std::size_t limit = std::min(text.size(), at + kLongestLabel);
  for (std::size_t i = at + 1; i < limit; ++i) {
    if (text[i] == ']') return i + 1;
    if (text[i] == '[') break;
    if (text[i] == '\\') ++i;
  }
  return at;
}

/// Whether `text` has only markup and no visible text.
bool isOnlyMarkup(std::string_view text) {
  return text.find_first_not_of(" \t\r\n>*_~") == npos;
}

}  // namespace

bool isInlineTail(std::string_view text, std::size_t at) {
  return readInlineTail(text, at).has_value();
}

void LinkLocator::pass(ByteRange range) {
  settle(open_.size(), range.begin);
  cursor_ = std::max(cursor_, range.end);
}

void LinkLocator::enter(LinkKind kind, std::optional<std::size_t> destinationAt,
                        std::string destination) {
  open_.push_back({kind, cursor_, destinationAt, std::move(destination)});
}

std::optional<LocatedLink> LinkLocator::leave() {
  if (open_.empty()) return std::nullopt;
  OpenLink link = std::move(open_.back());
  open_.pop_back();
  if (!link.isSettled()) {
    link.bracket = bracketOfEmpty(link);
    if (link.bracket) settle(open_.size(), link.begin());
  }
  return link.bracket ? close(link) : std::nullopt;
}

/// Finds the brackets of the innermost of the first `count` links whose first text, or inner
/// link, is at `position`.
void LinkLocator::settle(std::size_t count, std::size_t position) {
  std::size_t before = position;
  while (count > 0 && !open_[count - 1].isSettled()) {
    OpenLink& link = open_[--count];
    if (!isAutolinkAt(link, position)) link.bracket = lastBracket(link, before);
    link.isAutolink = !link.bracket;
    if (link.bracket) before = link.begin();
  }
}

std::optional<std::size_t> LinkLocator::lastBracket(const OpenLink& link,
                                                    std::size_t position) const {
  const char before = link.kind == LinkKind::image ? '!' : '[';
  const std::size_t floor = link.floor + (link.kind == LinkKind::link ? 0 : 1);
  for (std::size_t at = position; at > floor; --at) {
    if (text_[at - 1] != '[') continue;
    if (link.kind == LinkKind::link || text_[at - 2] == before) return at - 1;
  }
  return std::nullopt;
}

/// Whether the link is an autolink: its text is its destination, except a scheme added by the
/// parser.
bool LinkLocator::isAutolinkAt(const OpenLink& link, std::size_t position) const {
  if (link.kind != LinkKind::link) return false;
  if (link.destinationAt) return *link.destinationAt == position;
  constexpr std::size_t kEntity = 64;
  const std::string_view destination = link.destination;
  const std::string there = unescaped(text_.substr(position, destination.size() + kEntity));
  const bool hasAddedScheme =
      destination.starts_with("mailto:") || destination.starts_with("http://");
  return there.starts_with(destination) ||
         (hasAddedScheme && there.starts_with(destination.substr(7)));
}

std::optional<std::size_t> LinkLocator::bracketOfEmpty(const OpenLink& link) const {
  if (link.kind == LinkKind::wikiLink) return std::nullopt;
  if (const auto bracket = bracketBeforeDestination(link)) return bracket;
  std::size_t from = std::max(link.floor, cursor_);
  for (std::size_t at = text_.find('[', from); at != npos; at = text_.find('[', at + 1)) {
    if (link.kind == LinkKind::image && (at == from || text_[at - 1] != '!')) continue;
    const std::size_t end = text_.find_first_not_of(" \t\r\n>*_~", at + 1);
    if (end == npos || text_[end] != ']') continue;
    const auto tail = readInlineTail(text_, end + 1);
    if (tail ? isDestination(link, tail->destination)
             : behindReferenceLabel(text_, end + 1) > end + 1) {
      return at;
    }
  }
  return std::nullopt;
}

/// The opening bracket, found from a known destination back over "](".
std::optional<std::size_t> LinkLocator::bracketBeforeDestination(const OpenLink& link) const {
  if (!link.destinationAt || *link.destinationAt <= link.floor) return std::nullopt;
  std::size_t at = *link.destinationAt;
  if (text_[at - 1] == '<') --at;
  while (at > link.floor && std::string_view(" \t\r\n>").find(text_[at - 1]) != npos) --at;
  if (at < link.floor + 2 || text_[at - 1] != '(' || text_[at - 2] != ']') return std::nullopt;
  const std::size_t close = at - 2;
  const auto bracket = lastBracket(link, close);
  if (!bracket || !isOnlyMarkup(text_.substr(*bracket + 1, close - *bracket - 1))) {
    return std::nullopt;
  }
  return bracket;
}

/// Whether the link's destination is the one written at `range`.
bool LinkLocator::isDestination(const OpenLink& link, ByteRange range) const {
  if (link.destinationAt) return *link.destinationAt == range.begin;
  return unescaped(text_.substr(range.begin, range.end - range.begin)) == link.destination;
}

std::optional<LocatedLink> LinkLocator::close(const OpenLink& link) {
  const std::size_t bracket = *link.bracket;
  const std::size_t close = text_.find(']', std::max(cursor_, bracket + 1));
  if (close == npos) return std::nullopt;
  LocatedLink located{{link.begin(), close + 1}, {bracket + 1, close}, std::nullopt};
  if (link.kind == LinkKind::wikiLink) {
    ++located.range.end;
  } else if (const auto tail = readInlineTail(text_, close + 1);
             tail && isDestination(link, tail->destination)) {
    located.range.end = tail->end;
    located.destination = tail->destination;
  } else {
    located.range.end = behindReferenceLabel(text_, close + 1);
  }
  located.range.end = std::min(located.range.end, text_.size());
  cursor_ = std::max(cursor_, located.range.end);
  return located;
}

}  // namespace zephyrdown
