#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

namespace zephyrdown {

enum class BlockKind {
  paragraph,
  heading,
  list,      ///< one that may begin directly below a paragraph
  lateList,  ///< one that needs a blank line above: numbered from another number than 1
  quote,
  table,
  fencedCode,
  indentedCode,
  html,
  rule,
};

/// A block that stands in no other one.
struct Block {
  BlockKind kind;
  /// From its first to its last text; markup at either end may lie outside. Empty at the end of
  /// the text before where a block holds no text.
  ByteRange text;
};

/// Plain text on one line outside of code, links, HTML and autolinks; broken by markup. Entities
/// are plain text. A text may hold very many, and none that is read is too large for 32 bits.
struct TextStretch {
  std::uint32_t begin;
  std::uint32_t end;
};

struct FileMention {
  FileLink link;
  ByteRange label;  ///< between the brackets
};

/// What one pass over a Markdown text finds. All offsets are into the text as it was given.
struct Document {
  std::size_t bodyBegin = 0;  ///< behind a byte order mark and front matter
  std::string title;
  /// Behind the title's last text, where it is the first line of text and no heading.
  std::optional<std::size_t> titleEnd;
  /// The same of a heading that gives the title.
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

Document readDocument(std::string_view text);

/// The stretch that holds the byte at `position`; absent where that is markup or no plain text.
const TextStretch* stretchAt(const Document& document, std::size_t position);

}  // namespace zephyrdown
