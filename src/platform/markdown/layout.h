#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/markdown/document.h"

namespace zephyrdown {

/// The layout of a note: its head (title and top-placed tags), its body, and its foot
/// (bottom-placed tags and footnote definitions).
///
///   # Title head #work head: a tag line, which has only hashtags
///
///   Body              body
///
///   #home             foot
///   [^1]: a footnote  foot
///
/// Without a heading at the top, the first line of text is the title; if it is in a list, quote,
/// table, code or HTML block, that whole block is the head. In a note without a body, a tag line
/// belongs to the head if it is the first line or directly below the heading, otherwise to the
/// foot.
class Layout {
 public:
  Layout(std::string_view text, const Document& document);

  const Document& document() const { return document_; }
  /// The offset after a byte order mark and front matter.
  std::size_t textBegin() const { return document_.bodyBegin; }
  bool hasHead() const { return headEnd_.has_value(); }
  bool hasBody() const { return bodyBegin_ < footBegin_; }
  /// The end of the head's last line.
  std::optional<std::size_t> headEnd() const { return headEnd_; }
  bool headEndsInTags() const { return headEndsInTags_; }
  /// The end of the title's last line, if the title is a heading.
  std::optional<std::size_t> headingEnd() const { return headingEnd_; }

  /// The start of the line below the heading that is the title, even if the heading is in the body.
  std::optional<std::size_t> lineBelowHeading() const;

  /// The start of the body's first line; the start of the foot if there is no body.
  std::size_t bodyBegin() const { return bodyBegin_; }
  /// Whether the body's first line continues the paragraph at the end of the head.
  bool bodyContinuesHead() const;
  /// Whether all emphasis, links and code that begin in the head also end in it.
  bool headStandsAlone() const;
  /// Whether the body's first block interrupts a paragraph of the head.
  bool bodyInterruptsHead() const;
  /// The start of the foot's first line, or the text's end.
  std::size_t footBegin() const { return footBegin_; }
  bool hasFoot() const { return footBegin_ < text_.size(); }

  /// The end of the last hashtag of the top-placed or the bottom-placed tags.
  std::optional<std::size_t> topTagsEnd() const { return topTagsEnd_; }
  std::optional<std::size_t> bottomTagsEnd() const { return bottomTagsEnd_; }

  /// Whether the line that begins at `begin` is a tag line.
  bool isTagLine(std::size_t begin) const;

 private:
  void findFootnotes();
  void findFoot(std::size_t floor);
  std::size_t passTagLines(std::size_t line);
  std::size_t passTitle(std::size_t line);
  std::size_t titleEnd(std::size_t line) const;
  std::size_t blockEnd(std::size_t position) const;
  void endHead(std::size_t end, bool inTags);
  bool isHeader(std::size_t line) const;
  bool startsFootnote(std::size_t line) const;
  bool goesOnWithFootnote(std::size_t line) const;
  std::size_t footnoteEnd(std::size_t line) const;
  const ByteRange* footnoteAt(std::size_t position) const;
  std::size_t lastTagEnd(std::size_t lineEnd) const;

  std::string_view text_;
  const Document& document_;
  std::vector<ByteRange> footnotes_;
  std::optional<std::size_t> headEnd_, headingEnd_, topTagsEnd_, bottomTagsEnd_;
  bool headEndsInTags_ = false;
  bool headIsBlock_ = false;
  std::size_t bodyBegin_ = 0;
  std::size_t footBegin_ = 0;
};

}  // namespace zephyrdown
