#include "platform/markdown/parser_mending.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "platform/markdown/block_scanner.h"
#include "platform/markdown/lines.h"

namespace zephyrdown {
namespace {

constexpr std::size_t kCodeIndent = 4;

/// The prefix that puts a line into the first `depth` containers.
std::string prefixOf(const std::vector<Container>& containers, std::size_t depth) {
  std::string prefix;
  for (std::size_t i = 0; i < depth; ++i) {
    const Container& container = containers[i];
    prefix += container.mark == '>' ? std::string("> ") : std::string(container.indent, ' ');
  }
  return prefix;
}

class Mender {
 public:
  std::vector<Mend> mend(std::string_view input) {
    for (std::size_t line = 0; line < input.size();) {
      const std::size_t end = lineEnd(input, line);
      begin_ = line;
      isBelowCR_ = line > 0 && input[line - 1] == '\r';
      text_ = input.substr(line, end - line);
      line = behindLineBreak(input, end);
      mendLine();
      previousEnd_ = end;
    }
    std::stable_sort(mends_.begin(), mends_.end(),
                     [](const Mend& a, const Mend& b) { return a.at < b.at; });
    return std::move(mends_);
  }

 private:
  void mendLine() {
    const std::optional<BlockKind> open = scanner_.openKind();
    const Fence fence = scanner_.fence();
    const std::size_t depth = scanner_.containers().size();
    const bool isInQuote = depth > 0 && scanner_.containers().back().mark == '>';
    const bool maySplit = isInQuote || (depth > 0 && open == BlockKind::fencedCode);
    if (maySplit) before_ = scanner_.containers();
    here_ = scanner_.read(text_);
    if (maySplit) mendContainers(open, fence);
    if (here_.isFirst && here_.opened == 0) mendFirstLine(open, depth);
    mendMarks(open);
    mendBlankLine(depth);
    above_ = here_.kind;
  }

  void mendContainers(std::optional<BlockKind> open, Fence fence) {
    const bool isBlankLine = here_.content == text_.size() && here_.opened == 0;
    if (isBlankLine || here_.matched == before_.size()) return;
    if (open == BlockKind::fencedCode) {
      insertLine(prefixOf(before_, before_.size()) + std::string(fence.length, fence.mark));
    } else if (here_.joinsList) {
      insertLine(prefixOf(before_, here_.matched));
    }
  }

  void mendFirstLine(std::optional<BlockKind> open, std::size_t depth) {
    const bool isBelowTable = open == BlockKind::table && here_.matched == depth;
    const bool needsBlankLine =
        here_.kind == BlockKind::indentedCode
            ? above_ == BlockKind::table || above_ == BlockKind::html
            : isBelowTable && (here_.kind == BlockKind::heading || here_.kind == BlockKind::html ||
                               here_.kind == BlockKind::fencedCode);
    if (needsBlankLine) insertLine(prefixOf(scanner_.containers(), here_.matched));
  }

  /// Behind a blank line in an item the parser looks whether the last thing that it stored is the
  /// begin of that item. It may be a line of text or code, though, by its first byte: the lowest
  /// one of the offset at which the text begins, or the code ends.
  void mendBlankLine(std::size_t depth) {
    constexpr std::size_t kItem = 4;
    if (here_.kind) {
      const bool isFenceEnd = here_.kind == BlockKind::fencedCode && !scanner_.openKind();
      if (!isFenceEnd) stored_ = storedOffset() + added_;
      if (!isFenceEnd) storedAbove_ = previousEnd_;
    }
    const bool mayBeItem = !here_.kind && here_.opened == 0 && depth > 0 &&
                           here_.matched == depth && scanner_.containers().back().mark != '>';
    if (!mayBeItem || stored_ % 256 != kItem || !storedAbove_) return;
    mends_.push_back({*storedAbove_, 0, " "});
    ++added_;
    ++stored_;
  }

  std::size_t storedOffset() const {
    if (here_.kind == BlockKind::heading) {
      const std::size_t level = text_.find_first_not_of('#', here_.content);
      return begin_ + std::min(text_.find_first_not_of(" \t", level), text_.size());
    }
    const bool isVerbatim = here_.kind == BlockKind::fencedCode || here_.kind == BlockKind::html ||
                            here_.kind == BlockKind::indentedCode;
    if (!isVerbatim) return begin_ + here_.content;
    const bool isHTML = here_.kind == BlockKind::html;
    return begin_ + (isHTML ? text_.find_last_not_of(' ') + 1 : text_.size());
  }

  void mendMarks(std::optional<BlockKind> open) {
    if (here_.kind == BlockKind::paragraph) mendText();
    if (here_.kind == BlockKind::table && open == BlockKind::paragraph) mendDelimiters();
    if (here_.kind == BlockKind::html) mendHTML();
    const bool isFenceEnd = here_.kind == BlockKind::fencedCode && !scanner_.openKind();
    if (!isFenceEnd) return;
    for (std::size_t at = here_.content; at < text_.size(); ++at) {
      if (text_[at] == '\t') replace(at, " ");
    }
  }

  /// Makes the parser read the line as a plain line of a paragraph.
  void mendText() {
    const std::string_view content = text_.substr(here_.content);
    if (isTakenForVerbatim(content)) replace(here_.content + 1, "x");
    if (here_.isFirst) return;
    if (here_.indent >= kCodeIndent && std::string_view("`~<|-:").find(content[0]) != npos) {
      replace(here_.content - 1, ",");
    } else if (columnsOfDelimiterRow(content) > 0) {
      replace(text_.find('-', here_.content), ",");
    } else if (isEmptyItem(content)) {
      replace(here_.content, ",");
    }
  }

  /// Whether it is a list mark followed by blanks at most.
  static bool isEmptyItem(std::string_view content) {
    const auto mark = listMark(content);
    return mark && content.find_first_not_of(" \t", mark->length) == npos;
  }

  /// Whether the parser takes it for a verbatim tag: "<prefix>" begins like "<pre>".
  static bool isTakenForVerbatim(std::string_view content) {
    constexpr std::size_t kLongest = 7;
    if (!content.starts_with('<') || htmlStart(content) == HTMLKind::verbatim) return false;
    for (std::size_t length = 3; length < kLongest && length < content.size(); ++length) {
      const std::string cut(content.substr(0, length + 1));
      if (htmlStart(cut) == HTMLKind::verbatim) return true;
    }
    return false;
  }

  /// The parser requires three bytes in each cell.
  void mendDelimiters() {
    constexpr std::size_t kLeast = 3;
    for (std::size_t at = text_.find_first_of("-:", here_.content); at != npos;) {
      const std::size_t end = std::min(text_.find_first_not_of("-:", at), text_.size());
      const std::size_t dash = text_.find('-', at);
      if (end - at < kLeast) insert(dash, std::string(kLeast - (end - at), '-'));
      at = text_.find_first_of("-:", end);
    }
  }

  void mendHTML() {
    const std::string_view content = text_.substr(here_.content);
    if (here_.isFirst) mendHTMLStart(content);
    const HTMLKind kind = HTMLKind::verbatim;
    if (scanner_.openKind() || !endsHTML(content, kind)) return;
    for (std::size_t at = content.find("</"); at != npos; at = content.find("</", at + 1)) {
      constexpr std::string_view kTextArea = "</textarea>";
      const std::string_view tag = content.substr(at, kTextArea.size());
      if (tag.size() == kTextArea.size() && endsHTML(tag, kind)) {
        replace(here_.content + at, "</pre>     ");
      }
    }
  }

  void mendHTMLStart(std::string_view content) {
    const HTMLKind kind = htmlStart(content);
    const std::size_t name = content.starts_with("</") ? 2 : 1;
    if (content == "<!--") {
      insert(text_.size(), "\n");
    } else if (kind == HTMLKind::declaration && content[2] >= 'a') {
      replace(here_.content + 2, "X");
    } else if (kind == HTMLKind::verbatim && (content[1] | 0x20) == 't') {
      replace(here_.content, "<script  ");
    } else if (kind == HTMLKind::block && (content[name] | 0x20) == 'h' &&
               content[name + 1] >= '2' && content[name + 1] <= '6') {
      replace(here_.content + name + 1, "1");
    } else if (kind != HTMLKind::verbatim && isTakenForVerbatim(content)) {
      replace(here_.content + 1, "x");
    }
  }

  void insertLine(const std::string& line) {
    const bool wouldJoinCR = isBelowCR_ && line.empty();
    insert(0, (wouldJoinCR ? "\n" : line) + "\n");
  }
  void insert(std::size_t at, std::string text) {
    added_ += text.size();
    mends_.push_back({begin_ + at, 0, std::move(text)});
  }
  void replace(std::size_t at, std::string text) {
    const std::size_t length = text.size();
    mends_.push_back({begin_ + at, length, std::move(text)});
  }

  BlockScanner scanner_;
  std::vector<Container> before_;  // that were open, where the line may leave them
  ScannedLine here_;
  std::optional<BlockKind> above_;  // of the line above
  std::size_t begin_ = 0;
  bool isBelowCR_ = false;                  // the line above ends in a lone CR
  std::string_view text_;                   // of the line
  std::size_t stored_ = 0;                  // what the parser last stored, as it sees offsets
  std::optional<std::size_t> storedAbove_;  // the end of the line above that
  std::optional<std::size_t> previousEnd_;  // of the line above
  std::size_t added_ = 0;                   // bytes, by the mends so far
  std::vector<Mend> mends_;
};

}  // namespace

void mend(std::string& text, const std::vector<Mend>& mends) {
  std::size_t size = text.size();
  for (const Mend& mend : mends) size += mend.replacement.size() - mend.length;
  std::size_t end = text.size();
  text.resize(size);
  // From the end on, so that nothing is written over before it has moved.
  for (auto mend = mends.rbegin(); mend != mends.rend(); ++mend) {
    const std::size_t kept = mend->at + mend->length;
    size -= end - kept;
    std::memmove(text.data() + size, text.data() + kept, end - kept);
    size -= mend->replacement.size();
    mend->replacement.copy(text.data() + size, mend->replacement.size());
    end = mend->at;
  }
}

OffsetMap::OffsetMap(const std::vector<Mend>& mends) {
  std::size_t added = 0;
  for (const Mend& mend : mends) {
    const std::size_t end = mend.at + added + mend.replacement.size();
    added += mend.replacement.size() - mend.length;
    if (mend.replacement.size() != mend.length) shifts_.push_back({end, added});
  }
}

std::size_t OffsetMap::original(std::size_t offset) const {
  const auto next = std::partition_point(shifts_.begin(), shifts_.end(),
                                         [&](const Shift& shift) { return shift.begin <= offset; });
  return next == shifts_.begin() ? offset : offset - std::prev(next)->added;
}

std::vector<Mend> mendsForParser(std::string_view input) {
  return Mender().mend(input);
}

}  // namespace zephyrdown
