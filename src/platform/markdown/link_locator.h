#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

namespace zephyrdown {

/// The kinds of links that the parser reports.
enum class LinkKind { link, image, wikiLink };

/// The position of a link in the text.
struct LocatedLink {
  ByteRange range;
  ByteRange label;                       ///< between the brackets
  std::optional<ByteRange> destination;  ///< of an inline link, as written
};

/// Whether `at` is the start of "(destination "title")" (CommonMark 0.30, 6.3).
bool isInlineTail(std::string_view text, std::size_t at);

/// Finds the ranges of links. The parser reports links in order, and the positions of their texts,
/// but not those of the brackets. Everything between two texts is markup, so a link's opening
/// bracket is the last one before its first text, and its closing bracket the first one after its
/// last text. In "see [*this*](a.pdf)":
///
///   see          text, 0 to 4
///   (link)       enter
///   this         text, 6 to 10   the last "[" before 6 is at 4
///   (link)       leave           the first "]" from 10 is at 11; "(a.pdf)" follows
///
/// A link without text, such as "![](photo.png)", is found by the position of its destination.
class LinkLocator {
 public:
  explicit LinkLocator(std::string_view text) : text_(text) {}

  /// Reports a text, or anything else that is not a link's bracket, at `range`.
  void pass(ByteRange range);

  /// Reports the start of a link. `destinationAt` is the offset of its destination if the parser
  /// returned a view of the text; otherwise `destination` is the parser's copy.
  void enter(LinkKind kind, std::optional<std::size_t> destinationAt, std::string destination);

  /// Discards links that have not ended.
  void endBlock() { open_.clear(); }

  /// Ends the innermost open link, and returns it. Absent for an autolink, which has no brackets.
  std::optional<LocatedLink> leave();

 private:
  /// A link that has begun and not ended.
  struct OpenLink {
    LinkKind kind;
    std::size_t floor;  // the link cannot begin before
    std::optional<std::size_t> destinationAt;
    std::string destination;                            // used if destinationAt is absent
    std::optional<std::size_t> bracket = std::nullopt;  // offset of its last opening bracket
    bool isAutolink = false;
    bool isSettled() const { return bracket || isAutolink; }
    std::size_t begin() const { return *bracket - (kind == LinkKind::link ? 0 : 1); }
  };

  void settle(std::size_t count, std::size_t position);
  std::optional<std::size_t> lastBracket(const OpenLink& link, std::size_t position) const;
  bool isAutolinkAt(const OpenLink& link, std::size_t position) const;
  std::optional<std::size_t> bracketOfEmpty(const OpenLink& link) const;
  std::optional<std::size_t> bracketBeforeDestination(const OpenLink& link) const;
  bool isDestination(const OpenLink& link, ByteRange range) const;
  std::optional<LocatedLink> close(const OpenLink& link);

  std::string_view text_;
  std::size_t cursor_ = 0;  // the end of what has been reported
  std::vector<OpenLink> open_;
};

}  // namespace zephyrdown
