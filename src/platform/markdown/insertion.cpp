#include "platform/markdown/insertion.h"

#include <algorithm>
#include <optional>

#include "platform/markdown/lines.h"
#include "platform/markdown/seam.h"

namespace zephyrdown {
namespace {

/// The number of line breaks at the end of `text`.
int lineBreaksAtEnd(std::string_view text) {
  int count = 0;
  while (!text.empty() && isLineBreak(text.back())) {
    text = text.substr(0, previousLineEnd(text, text.size()));
    ++count;
  }
  return count;
}

/// Builds the text of an insertion.
class Piece {
 public:
  Piece(std::string_view text, std::string_view inserted)
      : lineBreak_(lineBreakStyle(text)), inserted_(inserted) {}

  bool breaksInLF() const { return lineBreak_ == "\n"; }
  void breakLine() { result_ += lineBreak_; }
  void addLine(std::string_view line) {
    result_ += line;
    breakLine();
  }
  void addClosing(std::string_view closing) { result_ += closing; }
  void addText() { result_ += inserted_; }
  /// Makes the text end in at least `count` line breaks.
  void endIn(int count) {
    for (int have = lineBreaksAtEnd(inserted_); have < count; ++have) breakLine();
  }
  /// Drops the last line break of the inserted text, since the surrounding text has one.
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

/// The blank lines added around an inserted text.
struct Parting {
  bool above = false;  ///< a blank line
  bool below = false;
};

/// The first separation for which `holds` returns true: `wanted`, or one with more blank lines.
/// Absent if there is none.
template <typename Holds>
std::optional<Parting> partingThatHolds(Parting wanted, const Holds& holds) {
  for (const Parting more : {Parting{false, false}, {true, false}, {false, true}, {true, true}}) {
    const Parting parting{wanted.above || more.above, wanted.below || more.below};
    if (holds(parting)) return parting;
  }
  return std::nullopt;
}

std::string linesBelow(const std::string& closing, Parting parting) {
  return (closing.empty() ? "" : closing + "\n") + (parting.below ? "\n" : "");
}

/// An insertion between two lines of the body, above the line that begins at `position`.
class InsertionAbove {
 public:
  InsertionAbove(std::string_view text, const Layout& layout, std::string_view inserted,
                 std::size_t position)
      : text_(text),
        inserted_(inserted),
        position_(position),
        seam_(text, layout.document(), position, position),
        closing_(scanned(inserted).closingLine()) {
    const bool goesOn = position == layout.bodyBegin() && layout.bodyContinuesHead();
    const Side bottom = lowerSideOf(scanned(inserted));
    const Side below = goesOn ? paragraphSide() : upperSideOf(text.substr(position));
    const bool hasCutIn = layout.bodyInterruptsHead() && bottom.kind == BlockKind::paragraph;
    wanted_ = {goesOn && needBlankLine(paragraphSide(), upperSideOf(inserted)),
               closing_.empty() && !hasCutIn && needBlankLine(bottom, below)};
  }

  std::optional<Parting> parting() const {
    return partingThatHolds(wanted_, [&](const Parting& tried) {
      return seam_.holds(tried.above ? "\n" : "", inserted_, linesBelow(closing_, tried));
    });
  }
  Parting wanted() const { return wanted_; }

  Operations planned(Parting parting) const {
    Piece piece(text_, inserted_);
    // After a lone CR, an LF would not be a line break of its own.
    const bool isBehindCR = position_ > 0 && text_[position_ - 1] == '\r';
    if (parting.above) piece.breakLine();
    if (parting.above && isBehindCR && piece.breaksInLF()) piece.breakLine();
    piece.addText();
    if (!closing_.empty()) {
      piece.endIn(1);
      piece.addLine(closing_);
      if (parting.below) piece.breakLine();
    } else {
      piece.endIn(parting.below ? 2 : 1);
    }
    return std::move(piece).at(position_);
  }

 private:
  std::string_view text_, inserted_;
  std::size_t position_;
  Seam seam_;
  std::string closing_;
  Parting wanted_;
};

/// The first line below the blank line that follows `position`.
std::size_t nextParagraph(std::string_view text, std::size_t position) {
  while (position < text.size() && skipBlankLines(text, position) == position) {
    position = nextLine(text, position);
  }
  return skipBlankLines(text, position);
}

/// Plans an insertion below the last non-blank line of `text` before `limit`. If blank lines cannot
/// keep it apart from what follows there, inserts at the end of the text.
Operations plannedBelow(std::string_view text, const Layout& layout, std::string_view inserted,
                        std::size_t limit) {
  const std::size_t end = lineEnd(text, contentEnd(text.substr(0, limit)));
  const std::string_view tail = text.substr(end, limit - end);
  const bool isLast = limit == text.size();
  const Seam seam(text, layout.document(), end, isLast ? text.size() : behindLineBreak(text, end));
  const bool isAttached = !isLast && nextLine(tail, 0) == tail.size();
  const Side top = upperSideOf(inserted);
  const std::string closing = seam.above().closingLine();
  const bool keepsApart = isLast && skipBlankLines(tail, nextLine(tail, 0)) > nextLine(tail, 0);
  // A paragraph may join the block above if the foot joins it, too.
  const bool mayJoin = isAttached && isPlainParagraph(top);
  const bool mustPart =
      closing.empty() && !mayJoin && needBlankLine(lowerSideOf(seam.above()), top);
  const bool belowTags = !layout.hasBody() && layout.headEndsInTags();
  const BlockScanner own = scanned(inserted);
  const std::string ownClosing = isLast ? std::string() : own.closingLine();
  const Parting wanted{
      keepsApart || (belowTags && !isAttached) || mustPart,
      isAttached && ownClosing.empty() && needBlankLine(lowerSideOf(own), paragraphSide())};
  const auto holds = [&](const Parting& tried) {
    const std::string before = closing.empty() ? "" : closing + "\n";
    return !(isLast && tried.below) &&
           seam.holds(before + (tried.above ? "\n" : ""), inserted, linesBelow(ownClosing, tried));
  };
  const auto found = partingThatHolds(wanted, holds);
  if (!found && !isLast) return plannedBelow(text, layout, inserted, text.size());
  const Parting parting = found.value_or(wanted);
  Piece piece(text, inserted);
  piece.breakLine();
  if (!closing.empty()) piece.addLine(closing);
  if (parting.above) piece.breakLine();
  if (!tail.empty()) piece.dropLastLineBreak();
  piece.addText();
  if (!ownClosing.empty()) {
    piece.endIn(1);
    piece.addClosing(ownClosing);
  }
  if (parting.below) piece.breakLine();
  return std::move(piece).at(end);
}

}  // namespace

Operations plannedAppend(std::string_view text, const Layout& layout, std::string_view inserted) {
  const std::size_t foot = layout.footBegin();
  const std::size_t end = contentEnd(text.substr(0, foot));
  const std::size_t first = textBegin(text);
  if (end > first) return plannedBelow(text, layout, inserted, foot);
  if (layout.hasFoot()) {
    return InsertionAbove(text, layout, inserted, first).planned({.below = true});
  }
  Piece piece(text, inserted);
  piece.addText();
  if (text.size() > first) piece.endIn(1);
  return std::move(piece).at(first);
}

Operations plannedPrepend(std::string_view text, const Layout& layout, std::string_view inserted) {
  if (!layout.hasBody()) return plannedAppend(text, layout, inserted);
  // Some paragraphs cannot be split, and no item can precede code; then it tries further down.
  constexpr int kMostTries = 5;
  std::size_t position = layout.bodyBegin();
  if (const auto line = layout.lineBelowHeading(); line && readDocument(inserted).headingEnd) {
    position = std::max(position, skipBlankLines(text, *line));
  }
  if (!layout.headStandsAlone()) position = nextParagraph(text, position);
  for (int tries = 0; tries < kMostTries && position < layout.footBegin(); ++tries) {
    const InsertionAbove place(text, layout, inserted, position);
    if (const auto parting = place.parting()) return place.planned(*parting);
    position = nextParagraph(text, position);
  }
  if (position >= layout.footBegin()) return plannedAppend(text, layout, inserted);
  const InsertionAbove usual(text, layout, inserted, layout.bodyBegin());
  return usual.planned(usual.wanted());
}

Operations plannedLastLine(std::string_view text, const Layout& layout, std::string_view line) {
  const std::size_t end = lineEnd(text, contentEnd(text));
  const std::size_t begin = std::min(layout.textBegin(), end);
  const std::string closing = scanned(text.substr(begin, end - begin)).closingLine();
  Piece piece(text, line);
  if (end > 0) piece.breakLine();
  if (!closing.empty()) piece.addLine(closing);
  if (end > 0) piece.breakLine();
  piece.addText();
  return std::move(piece).at(end);
}

}  // namespace zephyrdown
