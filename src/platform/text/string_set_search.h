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

/// Finds many strings in one pass over a text, each where StringSearch finds it. The automaton of
/// Aho and Corasick, over comparison forms and from the text's end to its beginning.
///
/// Cost: linear in the text, however many needles there are; four bytes for each scalar of the
/// text's form. For a few needles as many StringSearches are quicker.
class StringSetSearch {
 public:
  /// Needles must be valid UTF-8. An empty one is never found.
  StringSetSearch(const std::vector<std::string>& needles, CaseFolding folding);

  /// For each needle, in the constructor's order, whether it is in `text`.
  std::vector<bool> found(std::string_view text) const;

  /// The number of matches of all needles as one alternation: each is the first from the end of
  /// the one before on, and the longest that begins there.
  std::size_t count(std::string_view text) const;

 private:
  using NodeIndex = std::uint32_t;
  static constexpr NodeIndex kRoot = 0;

  /// A tail of some needle, which is a head when read backwards.
  struct Node {
    NodeIndex fallback = kRoot;  // the longest other tail that this one begins with
    NodeIndex shorter = kRoot;   // the nearest whole needle among the fallbacks; the root: none
    std::uint32_t depth = 0;     // its length, in scalars
    bool isNeedle = false;
  };

  NodeIndex add(std::string_view needle);
  void linkFallbacks();
  NodeIndex child(NodeIndex node, char32_t scalar) const;
  NodeIndex advance(NodeIndex node, char32_t scalar) const;
  /// The longest needle that `node` begins with, itself included, or the root.
  NodeIndex longestNeedle(NodeIndex node) const {
    return nodes_[node].isNeedle ? node : nodes_[node].shorter;
  }

  CaseFolding folding_;
  std::vector<Node> nodes_{1};
  std::unordered_map<std::uint64_t, NodeIndex> children_;  // by node and scalar
  std::array<NodeIndex, 128> firstASCII_{};                // the root's, for speed
  std::vector<NodeIndex> needles_;                         // where each ends; the root: nowhere
  std::uint32_t longest_ = 0;
};

}  // namespace platform::text
