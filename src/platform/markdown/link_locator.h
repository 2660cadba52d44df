#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

namespace zephyrdown {

enum class LinkKind { link, image, wikiLink };

/// Where a link lies in the text.
struct LocatedLink {
  ByteRange range;
  ByteRange label;                       ///< between the brackets
  std::optional<ByteRange> destination;  ///< of an inline link, as it is written
};

/// Whether "(destination "title")" stands at `at`.
bool isInlineTail(std::string_view text, std::size_t at);

/// Finds the ranges of links. The parser tells which links there are, in order, and where the
/// texts lie, but not where brackets are. All that stands between two texts is markup, though: so
/// the bracket that opens a link is the last one before its first text, the one that closes it the
/// first one behind its last text. In "see [*this*](a.pdf)":
///
///   see          text, 0 to 4
///   (link)       enter
///   this         text, 6 to 10   the last "[" before 6 is at 4
///   (link)       leave           the first "]" from 10 is at 11; "(a.pdf)" follows
///
/// A link without a text, as "![](photo.png)", is found by where its destination lies.
class LinkLocator {
 public:
  explicit LinkLocator(std::string_view text) : text_(text) {}

  /// A text, or another thing that is no part of a link's brackets, at `range`.
  void pass(ByteRange range);

  /// `destinationAt`: the offset of the destination's first byte, where the parser hands out the
  /// very bytes of the text; else `destination` is what it made of them.
  void enter(LinkKind kind, std::optional<std::size_t> destinationAt, std::string destination);

  /// Forgets links that were entered and not left.
  void endBlock() { open_.clear(); }

  /// The link that was entered last. Nothing for an autolink, which has no brackets.
  std::optional<LocatedLink> leave();

 private:
  struct OpenLink {
    LinkKind kind;
    std::size_t floor;  // it does not begin before
    std::optional<std::size_t> destinationAt;
    std::string destination;                            // where destinationAt is not known
    std::optional<std::size_t> bracket = std::nullopt;  // the last one of its opening brackets
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
  std::size_t cursor_ = 0;  // everything before is accounted for
  std::vector<OpenLink> open_;
};

}  // namespace zephyrdown
