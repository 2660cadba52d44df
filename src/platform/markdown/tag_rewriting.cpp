#include "platform/markdown/tag_rewriting.h"

#include <algorithm>
#include <set>

#include "platform/markdown/ascii.h"
#include "platform/markdown/hashtag.h"
#include "platform/markdown/hashtag_grammar.h"
#include "platform/markdown/insertion.h"
#include "platform/markdown/layout.h"
#include "platform/markdown/lines.h"
#include "platform/markdown/removal.h"

namespace zephyrdown {
namespace {

/// The hashtag that is read as `name` before `rest`, the plain text that follows. An additional
/// closing mark separates "#2024#.5", and a backslash escapes a hash mark that follows.
std::optional<std::string> fittingHashtag(std::string_view name, std::string_view rest) {
  constexpr std::size_t kBehindMark = 8;
  const auto usual = ZDKHashtag::hashtagStringForTagName(name);
  if (!usual) return std::nullopt;
  if (const std::size_t hash = rest.find('#', 1); hash != rest.npos) {
    rest = rest.substr(0, hash + kBehindMark);
  }
  const std::string closed = std::string("#").append(name) + "#";
  for (const std::string& hashtag : {*usual, closed, closed + "\\"}) {
    const std::string line = hashtag + std::string(rest);
    std::vector<HashtagMention> tags;
    findHashtags(line, {0, line.size()}, /*opens=*/true, tags);
    if (!tags.empty() && tags[0].name == name &&
        tags[0].range.end == hashtag.find_last_not_of('\\') + 1) {
      return hashtag;
    }
  }
  return std::nullopt;
}

/// Whether it is "#" and a name of ASCII letters, digits and slashes.
bool isPlainWord(std::string_view hashtag) {
  if (!hashtag.starts_with('#') || !isPlainTagName(hashtag.substr(1))) return false;
  return std::all_of(hashtag.begin() + 1, hashtag.end(), [](char c) {
    return isASCIILetter(byteOf(c)) || isASCIIDigit(byteOf(c)) || c == '/';
  });
}

/// Plans a new tag line directly below the title; without a heading, as the first line.
Operations plannedTopLine(std::string_view text, const Document& document, const Layout& layout,
                          std::string_view hashtag) {
  const std::string_view lineBreak = lineBreakStyle(text);
  const auto heading = layout.headingEnd();
  const std::size_t at = heading ? *heading : document.bodyBegin;
  const std::size_t next = heading ? nextLine(text, at) : at;
  std::string line(hashtag);
  if (heading) line.insert(0, lineBreak);
  const std::size_t nextEnd = lineEnd(text, next);
  if (!isBlankText(text.substr(next, nextEnd - next))) line.append(lineBreak);
  if (!heading && next < text.size()) line.append(lineBreak);
  return {{{at, at}, std::move(line)}};
}

/// Rewrites the mentions of one text.
class Renamer {
 public:
  Renamer(std::string_view text, const Document& document, std::string_view from,
          std::string_view to)
      : text_(text), document_(document), layout_(text, document), from_(from), to_(to) {}

  Operations plan() {
    for (next_ = document_.hashtags.begin(); next_ != document_.hashtags.end(); ++next_) {
      if (next_->range.begin >= line_.end) enterLine();
      if (const auto name = renamed(next_->name)) {
        rewrite(*next_, *name, isTagLine_ && !names_.insert(*name).second);
      }
    }
    return std::move(results_);
  }

 private:
  void enterLine() {
    line_.end = lineEnd(text_, next_->range.end);
    line_.begin = std::max(lineBegin(text_, next_->range.begin), document_.bodyBegin);
    isTagLine_ = layout_.isTagLine(line_.begin);
    names_.clear();
    if (!isTagLine_) return;
    // Records names that do not change first, so that they are kept rather than renamed ones.
    for (auto tag = next_; tag != document_.hashtags.end() && tag->range.end <= line_.end; ++tag) {
      if (!renamed(tag->name)) names_.insert(tag->name);
    }
  }

  std::optional<std::string> renamed(std::string_view name) const {
    return ZDKHashtag::renamedTagName(name, from_, to_);
  }

  void rewrite(const HashtagMention& tag, const std::string& name, bool isKnown) {
    const std::size_t end = stretchAt(document_, tag.range.begin)->end;
    const auto hashtag = fittingHashtag(name, text_.substr(tag.range.end, end - tag.range.end));
    if (!hashtag) return;
    if (isKnown) {
      ByteRange range = tag.range;
      const std::size_t floor =
          results_.empty() ? line_.begin : std::max(line_.begin, results_.back().range.end);
      while (range.begin > floor && isBlank(text_[range.begin - 1])) --range.begin;
      if (range.begin == line_.begin) range.end = skipBlanks(text_, range.end);
      results_.push_back({range, {}});
    } else {
      results_.push_back({tag.range, *hashtag});
    }
  }

  std::string_view text_;
  const Document& document_;
  Layout layout_;
  std::string_view from_, to_;
  std::vector<HashtagMention>::const_iterator next_;
  ByteRange line_;
  bool isTagLine_ = false;
  std::set<std::string, std::less<>> names_;
  Operations results_;
};

}  // namespace

bool hasTag(const Document& document, std::string_view name) {
  return std::any_of(document.hashtags.begin(), document.hashtags.end(),
                     [&](const HashtagMention& tag) { return tag.name == name; });
}

Operations plannedTag(std::string_view text, const Document& document, std::string_view name,
                      bool bottom) {
  const auto hashtag = ZDKHashtag::hashtagStringForTagName(name);
  if (!hashtag || hasTag(document, name)) return {};
  const Layout layout(text, document);
  auto line = bottom ? layout.bottomTagsEnd() : layout.topTagsEnd();
  if (!line && !layout.hasBody()) line = bottom ? layout.topTagsEnd() : layout.bottomTagsEnd();
  if (line) return {{{*line, *line}, " " + *hashtag}};
  if (bottom) return plannedLastLine(text, layout, *hashtag);
  return plannedTopLine(text, document, layout, *hashtag);
}

Operations plannedTagRemoval(std::string_view text, const Document& document,
                             std::string_view name) {
  std::vector<ByteRange> ranges;
  for (const HashtagMention& tag : document.hashtags) {
    if (tag.name == name) ranges.push_back(tag.range);
  }
  Operations results = plannedRemoval(text, ranges);
  // A line "---" that becomes the first one must not open front matter.
  const bool mayOpenFrontMatter = !results.empty() &&
                                  results.front().range.begin <= document.bodyBegin &&
                                  text.substr(results.front().range.end).starts_with("---");
  if (mayOpenFrontMatter && bodyBegin(withOperations(text, results)) != document.bodyBegin) {
    results.front().replacement = lineBreakStyle(text);
  }
  return results;
}

// Nothing in Markdown depends on which letters and digits a tag has. How many there are matters to
// the limits of wiki links, of tables and for texts made to be slow; the whole name to a title and
// to a reference's label.
bool changesNamesOnly(const Operations& renaming, std::string_view text, const Document& document,
                      std::string_view from) {
  constexpr std::size_t kLongest = 10'000;
  if (text.size() > kLongest) return false;
  for (const std::string_view mark : {"]:", "]](", "|"}) {
    if (text.find(mark) != npos) return false;
  }
  const auto titleEnd = document.headingEnd ? document.headingEnd : document.titleEnd;
  if (!titleEnd) return false;
  const auto mentions = std::count_if(
      document.hashtags.begin(), document.hashtags.end(),
      [&](const HashtagMention& tag) { return ZDKHashtag::isTagOrDescendant(tag.name, from); });
  if (static_cast<std::size_t>(mentions) != renaming.size()) return false;
  return std::all_of(renaming.begin(), renaming.end(), [&](const ZDKASTOperationResult& edit) {
    const std::size_t begin = lineBegin(text, edit.range.begin);
    const std::string_view line = text.substr(begin, lineEnd(text, begin) - begin);
    return edit.range.begin >= *titleEnd && line.find('_') == npos && line.find("[[") == npos &&
           isPlainWord(text.substr(edit.range.begin, edit.range.end - edit.range.begin)) &&
           isPlainWord(edit.replacement);
  });
}

Operations plannedTagRename(std::string_view text, const Document& document, std::string_view from,
                            std::string_view to) {
  if (from.empty() || from == to) return {};
  return Renamer(text, document, from, to).plan();
}

}  // namespace zephyrdown
