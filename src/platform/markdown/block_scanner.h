#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/block_starts.h"
#include "platform/markdown/document.h"

namespace zephyrdown {

/// A quote or a list's item that is open.
struct Container {
  char mark = 0;           ///< ">", or the kind of a list's mark
  std::size_t indent = 0;  ///< columns from the parent's content to the item's own
  bool isEmpty = false;    ///< an item of which only the mark was read
  bool operator==(const Container&) const = default;
};

/// What a line is to the blocks of its text.
struct ScannedLine {
  std::optional<BlockKind> kind;  ///< of the block without others in it; absent of a blank line
  std::size_t matched = 0;        ///< containers that were open and go on
  std::size_t opened = 0;         ///< containers that begin
  bool joinsList = false;         ///< the first of those goes on with the list above
  bool isLazy = false;            ///< goes on with a paragraph whose containers it does not name
  bool isFirst = false;           ///< its block begins here
  std::size_t indent = 0;         ///< columns of blanks before the content, in its containers
  std::size_t content = 0;        ///< the offset of the first byte behind marks and blanks
};

/// Reads the blocks of a text line by line (CommonMark 0.30, appendix "A parsing strategy"; tables
/// of GFM, 4.10). The parser of inlines has its own idea of them, which is wrong here and there.
/// Two scanners that are equal read what follows alike.
class BlockScanner {
 public:
  /// `line` without its line break.
  ScannedLine read(std::string_view line);

  const std::vector<Container>& containers() const { return containers_; }

  /// The kind of the block that a next line may go on with; absent behind a blank line and behind
  /// blocks that have their end.
  std::optional<BlockKind> openKind() const { return leaf_; }
  /// The kind of the last block that stands in no other; absent where none was read.
  std::optional<BlockKind> outermostKind() const { return outermost_; }

  /// Of the fenced code that is open.
  Fence fence() const { return fence_; }

  /// Of the code or HTML that is open: a line that ends it, empty where a blank line does so too.
  std::string closingLine() const;

  bool operator==(const BlockScanner& other) const;

 private:
  void matchContainers(ScannedLine& line);
  void skipBlanks(ScannedLine& line);
  void skipQuoteMark(ScannedLine& line);
  bool readOpenBlock(ScannedLine& line);
  bool readContainer(ScannedLine& line);
  void openContainer(ScannedLine& line, char mark);
  void readLeaf(ScannedLine& line);
  bool readOneLine(ScannedLine& line);
  bool readVerbatim(ScannedLine& line);
  bool readTable(ScannedLine& line);
  void beginLeaf(ScannedLine& line, BlockKind kind);
  void turnParagraphInto(BlockKind kind, ScannedLine& line);

  bool isAtEnd(const ScannedLine& line) const;
  bool isInside(const ScannedLine& line) const;
  bool isBelowParagraph(const ScannedLine& line) const;
  bool goesOnWithParagraph(const ScannedLine& line) const;
  std::string_view content(const ScannedLine& line) const { return text_.substr(line.content); }

  std::string_view text_;   // of the line at hand
  std::size_t column_ = 0;  // of its content
  std::vector<Container> containers_;
  std::optional<BlockKind> leaf_, outermost_;
  Fence fence_;
  HTMLKind html_ = HTMLKind::none;
  std::string verbatimTag_;      // of the open HTML: "script"
  std::size_t lines_ = 0;        // of the open paragraph
  std::size_t headerCells_ = 0;  // of its first line
};

}  // namespace zephyrdown
