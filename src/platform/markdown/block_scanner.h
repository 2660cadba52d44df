#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/block_starts.h"
#include "platform/markdown/document.h"

namespace zephyrdown {

/// An open block quote or list item.
struct Container {
  char mark = 0;           ///< ">", or ListMark::kind
  std::size_t indent = 0;  ///< columns from the parent's content to the item's content
  bool isEmpty = false;    ///< an item that has no content yet, only its mark
  bool operator==(const Container&) const = default;
};

/// The role of a line in the block structure of its text.
struct ScannedLine {
  std::optional<BlockKind> kind;  ///< of the leaf block; absent for a blank line
  std::size_t matched = 0;        ///< number of open containers that continue
  std::size_t opened = 0;         ///< number of containers that begin
  bool joinsList = false;         ///< the first of these continues the list above
  bool isLazy = false;   ///< a lazy continuation line: it lacks marks of its paragraph's containers
  bool isFirst = false;  ///< its block begins here
  std::size_t indent =
      0;  ///< columns of blanks before the content, after the marks of its containers
  std::size_t content = 0;  ///< byte offset of the content, after marks and blanks
};

/// Reads the block structure of a text line by line (CommonMark 0.30, appendix "A parsing
/// strategy"; tables of GFM, 4.10). The library that parses notes reads some blocks wrongly; see
/// parser_mending.h. Two scanners that compare equal read the following lines equally.
class BlockScanner {
 public:
  /// Reads the next line, given without its line break.
  ScannedLine read(std::string_view line);

  const std::vector<Container>& containers() const { return containers_; }

  /// The kind of the leaf block that the next line may continue; absent after a blank line and
  /// after a finished block.
  std::optional<BlockKind> openKind() const { return leaf_; }
  /// The kind of the last top-level block; absent if there was none.
  std::optional<BlockKind> outermostKind() const { return outermost_; }

  /// The fence of the open code block.
  Fence fence() const { return fence_; }

  /// A line that ends the open code or HTML block; empty if a blank line ends it.
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

  std::string_view text_;   // of the current line
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
