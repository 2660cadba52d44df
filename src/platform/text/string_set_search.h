#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/text/folding.h"

namespace platform::text {

/// Finds many strings in one pass over a text, with the same matches as StringSearch. It is an
/// Aho-Corasick automaton over comparison forms that reads the text backwards.
///
/// Cost: linear in the text, however many needles there are, and four bytes of memory for each
/// scalar of the text's form. For a few needles, separate StringSearches are faster.
class StringSetSearch {
 public:
  /// Needles must be valid UTF-8. Empty needles are never found.
  StringSetSearch(const std::vector<std::string>& needles, CaseFolding folding);

  /// For each needle, in the constructor's order, whether it is in `text`.
  std::vector<bool> found(std::string_view text) const;

  /// Counts non-overlapping matches of any needle: from the end of each match, the next is the
  /// leftmost, and of those the longest.
  std::size_t count(std::string_view text) const;

 private:
  using NodeIndex = std::uint32_t;
  static constexpr NodeIndex kRoot = 0;

  /// A suffix of some needle, which read backwards is a prefix.
  struct Node {
    NodeIndex fallback = kRoot;  // the longest other suffix that is a prefix of this one
    NodeIndex shorter = kRoot;   // the longest complete needle among the fallbacks; kRoot if none
    std::uint32_t depth = 0;     // its length, in scalars
    bool isNeedle = false;
  };

  NodeIndex add(std::string_view needle);
  void linkFallbacks();
  NodeIndex child(NodeIndex node, char32_t scalar) const;
  NodeIndex advance(NodeIndex node, char32_t scalar) const;
  /// The longest needle that is a prefix of `node`, possibly all of it; kRoot if none.
  NodeIndex longestNeedle(NodeIndex node) const {
    return nodes_[node].isNeedle ? node : nodes_[node].shorter;
  }

  CaseFolding folding_;
  std::vector<Node> nodes_{1};
  std::unordered_map<std::uint64_t, NodeIndex> children_;  // by node and scalar
  std::array<NodeIndex, 128> firstASCII_{};                // the root's children, for speed
  std::vector<NodeIndex> needles_;  // the node of each needle; kRoot for an empty one
  std::uint32_t longest_ = 0;
};

}  // namespace platform::text
