#include "platform/markdown/insertion.h"

#include "platform/markdown/lines.h"
#include "platform/markdown/seam.h"

namespace zephyrdown {
namespace {

/// How many line breaks `text` ends in.
int lineBreaksAtEnd(std::string_view text) {
  int count = 0;
  while (!text.empty() && isLineBreak(text.back())) {
    text = text.substr(0, previousLineEnd(text, text.size()));
    ++count;
  }
  return count;
}

/// An insertion in the making.
class Piece {
 public:
  Piece(std::string_view text, std::string_view inserted)
      : lineBreak_(lineBreakStyle(text)), inserted_(inserted) {}

  void breakLine() { result_ += lineBreak_; }
  void addLine(std::string_view line) {
    result_ += line;
    breakLine();
  }
  void addClosing(std::string_view closing) { result_ += closing; }
  void addText() { result_ += inserted_; }
  /// Ends the text in at least `count` line breaks.
  void endIn(int count) {
    for (int have = lineBreaksAtEnd(inserted_); have < count; ++have) breakLine();
  }
  /// Leaves one line break of the inserted text to those that are there already.
  void dropLastLineBreak() {
    if (lineBreaksAtEnd(inserted_) > 0) {
      inserted_ = inserted_.substr(0, previousLineEnd(inserted_, inserted_.size()));
    }
  }
  Operations at(std::size_t position) && { return {{{position, position}, std::move(result_)}}; }

 private:
  std::string_view lineBreak_;
  std::string_view inserted_;
  std::string result_;
};

/// Above the body.
Operations plannedAbove(std::string_view text, const Layout& layout, std::string_view inserted) {
  const std::size_t position = layout.bodyBegin();
  Piece piece(text, inserted);
  if (layout.bodyGoesOn() && needBlankLine(paragraphSide(), upperSideOf(inserted))) {
    piece.breakLine();
  }
  piece.addText();
  const Side bottom = lowerSideOf(inserted);
  if (const std::string closing = closingLine(inserted, bottom); !closing.empty()) {
    piece.endIn(1);
    piece.addLine(closing);
    return std::move(piece).at(position);
  }
  const Side below = layout.bodyGoesOn() ? paragraphSide() : upperSideOf(text.substr(position));
  const bool hasCutIn = layout.bodyCutsIn() && bottom.kind == BlockKind::paragraph;
  piece.endIn(!hasCutIn && needBlankLine(bottom, below) ? 2 : 1);
  return std::move(piece).at(position);
}

/// Below the last line of `text` before `limit` that is not blank, and above what follows it.
Operations plannedBelow(std::string_view text, std::size_t limit, std::string_view inserted,
                        bool belowTags) {
  const std::size_t end = lineEnd(text, contentEnd(text.substr(0, limit)));
  const std::string_view above = text.substr(0, end);
  const std::string_view tail = text.substr(end, limit - end);
  const bool isLast = limit == text.size();
  const bool isAttached = !isLast && nextLine(tail, 0) == tail.size();
  const Side top = upperSideOf(inserted);
  const Side last = lowerSideOf(above);
  const std::string closing = closingLine(above, last);
  Piece piece(text, inserted);
  piece.breakLine();
  if (!closing.empty()) piece.addLine(closing);
  const bool keepsApart = isLast && skipBlankLines(tail, nextLine(tail, 0)) > nextLine(tail, 0);
  // A paragraph may join the block above where the foot does so too.
  const bool mayJoin = isAttached && isPlainParagraph(top);
  const bool mustPart = closing.empty() && !mayJoin && needBlankLine(last, top);
  if (keepsApart || (belowTags && !isAttached) || mustPart) piece.breakLine();
  if (!tail.empty()) piece.dropLastLineBreak();
  piece.addText();
  if (isLast) return std::move(piece).at(end);
  const Side bottom = lowerSideOf(inserted);
  if (const std::string ownClosing = closingLine(inserted, bottom); !ownClosing.empty()) {
    piece.endIn(1);
    piece.addClosing(ownClosing);
  } else if (isAttached && needBlankLine(bottom, paragraphSide())) {
    piece.breakLine();
  }
  return std::move(piece).at(end);
}

}  // namespace

Operations plannedAppend(std::string_view text, const Layout& layout, std::string_view inserted) {
  const std::size_t foot = layout.footBegin();
  const std::size_t end = contentEnd(text.substr(0, foot));
  const std::size_t first = textBegin(text);
  if (end > first) {
    return plannedBelow(text, foot, inserted, !layout.hasBody() && layout.headEndsInTags());
  }
  Piece piece(text, inserted);
  piece.addText();
  if (text.size() > first) piece.endIn(layout.hasFoot() ? 2 : 1);
  return std::move(piece).at(first);
}

Operations plannedPrepend(std::string_view text, const Layout& layout, std::string_view inserted) {
  if (!layout.hasBody()) return plannedAppend(text, layout, inserted);
  return plannedAbove(text, layout, inserted);
}

Operations plannedLastLine(std::string_view text, std::string_view line) {
  const std::size_t end = lineEnd(text, contentEnd(text));
  const std::string_view above = text.substr(0, end);
  const std::string closing = closingLine(above, lowerSideOf(above));
  Piece piece(text, line);
  if (end > 0) piece.breakLine();
  if (!closing.empty()) piece.addLine(closing);
  if (end > 0) piece.breakLine();
  piece.addText();
  return std::move(piece).at(end);
}

}  // namespace zephyrdown
