#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

namespace zephyrdown {

/// The kinds of blocks, except containers inside of others.
enum class BlockKind {
  paragraph,
  heading,
  list,      ///< a list that can interrupt a paragraph
  lateList,  ///< a list that cannot, since it does not begin with the number 1
  quote,
  table,
  fencedCode,
  indentedCode,
  html,
  rule,
};

/// A top-level block.
struct Block {
  BlockKind kind;
  /// From the block's first to its last text; markup at either end may be outside. For a block
  /// without text, an empty range at the end of the previous text.
  ByteRange text;
};

/// A run of plain text within one line, between markup, code, links, HTML and autolinks. Entities
/// count as plain text. 32 bits, since a text may have very many stretches; larger texts are not
/// parsed.
struct TextStretch {
  std::uint32_t begin;
  std::uint32_t end;
};

/// An occurrence of a link to a file.
struct FileMention {
  FileLink link;
  ByteRange label;  ///< between the brackets
};

/// The contents of a Markdown text, found in one pass. All offsets are bytes in the original text.
struct Document {
  std::size_t bodyBegin = 0;  ///< after a byte order mark and front matter
  std::string title;
  /// The end of the title's last text if the title is a line of text and not a heading.
  std::optional<std::size_t> titleEnd;
  /// Likewise if the title is a heading.
  std::optional<std::size_t> headingEnd;
  std::vector<HashtagMention> hashtags;
  std::vector<FileMention> files;  ///< ascending by begin
  std::vector<std::string> wikiLinks;
  std::int32_t todoIncomplete = 0;
  std::int32_t todoCompleted = 0;
  bool hasImages = false;
  bool hasCode = false;
  std::vector<Block> blocks;
  std::vector<TextStretch> stretches;
};

/// Parses a text. Never fails, as any bytes are a Markdown text.
Document readDocument(std::string_view text);

/// The stretch that contains the byte at `position`; null if there is none.
const TextStretch* stretchAt(const Document& document, std::size_t position);

}  // namespace zephyrdown
