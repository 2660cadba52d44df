#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/markdown/document.h"

namespace zephyrdown {

/// How a note is laid out: its head (title and top-placed tags), its body, and its foot
/// (bottom-placed tags and the definitions of footnotes).
///
///   # Title           head
///   #work             head: a tag line, one that holds hashtags and nothing else
///
///   Body              body
///
///   #home             foot
///   [^1]: a footnote  foot
///
/// Without a heading at the top, the first line of text is the title; where that stands in a list,
/// quote, table, code or HTML, the whole of this block is the head. A tag line that could be
/// either, in a note without a body, belongs to the head where it stands first or directly below
/// the heading, else to the foot.
class Layout {
 public:
  Layout(std::string_view text, const Document& document);

  const Document& document() const { return document_; }
  /// Behind a byte order mark and front matter.
  std::size_t textBegin() const { return document_.bodyBegin; }
  bool hasHead() const { return headEnd_.has_value(); }
  bool hasBody() const { return bodyBegin_ < footBegin_; }
  /// The end of the head's last line.
  std::optional<std::size_t> headEnd() const { return headEnd_; }
  bool headEndsInTags() const { return headEndsInTags_; }
  /// The end of the title's last line, where the title is a heading.
  std::optional<std::size_t> headingEnd() const { return headingEnd_; }

  /// The line below the heading that gives the title, wherever it stands.
  std::optional<std::size_t> lineBelowHeading() const;

  /// The first line of the body; the foot's begin where there is no body.
  std::size_t bodyBegin() const { return bodyBegin_; }
  /// Whether the body's first line goes on with the paragraph that the head ends in.
  bool bodyGoesOn() const;
  /// Whether no emphasis, link or code that begins in the head ends in the body.
  bool headStandsAlone() const;
  /// Whether the body's first block stands directly below a paragraph of the head.
  bool bodyCutsIn() const;
  /// The foot's first line, or the text's end.
  std::size_t footBegin() const { return footBegin_; }
  bool hasFoot() const { return footBegin_ < text_.size(); }

  /// The end of the last hashtag of the top-placed or the bottom-placed tags.
  std::optional<std::size_t> topTagsEnd() const { return topTagsEnd_; }
  std::optional<std::size_t> bottomTagsEnd() const { return bottomTagsEnd_; }

  /// Whether the line that begins there is a tag line.
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
