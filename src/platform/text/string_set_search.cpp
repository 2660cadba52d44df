#include "platform/text/string_set_search.h"

#include <algorithm>
#include <bit>

#include "platform/text/comparison_units.h"

namespace platform::text {
namespace {

/// Flags the first scalar of a unit, since matches begin and end at unit boundaries.
constexpr char32_t kUnitStart = 0x80000000;

std::vector<char32_t> markedForm(std::string_view text, CaseFolding folding) {
  std::vector<char32_t> form;
  form.reserve(text.size());
  UnitReader units(text, 0, ScalarForms::shared(folding));
  while (units.next()) {
    const std::size_t start = form.size();
    form.insert(form.end(), units.scalars().begin(), units.scalars().end());
    if (start < form.size()) form[start] |= kUnitStart;
  }
  return form;
}

bool isBetweenUnits(const std::vector<char32_t>& form, std::size_t place) {
  return place == form.size() || (form[place] & kUnitStart) != 0;
}

std::uint64_t childKey(std::uint32_t node, char32_t scalar) {
  return std::uint64_t{node} << 32 | scalar;
}

}  // namespace

StringSetSearch::StringSetSearch(const std::vector<std::string>& needles, CaseFolding folding)
    : folding_(folding) {
  for (const std::string& needle : needles) needles_.push_back(add(needle));
  linkFallbacks();
}

StringSetSearch::NodeIndex StringSetSearch::add(std::string_view needle) {
  std::vector<char32_t> form = markedForm(needle, folding_);
  for (char32_t& scalar : form) scalar &= ~kUnitStart;
  if (form.empty() || std::find(form.begin(), form.end(), kIllFormed) != form.end()) return kRoot;
  NodeIndex node = kRoot;
  for (auto scalar = form.rbegin(); scalar != form.rend(); ++scalar) {
    const auto [place, isNew] =
        children_.try_emplace(childKey(node, *scalar), static_cast<NodeIndex>(nodes_.size()));
    if (isNew) nodes_.push_back({.depth = nodes_[node].depth + 1});
    if (node == kRoot && *scalar < firstASCII_.size()) firstASCII_[*scalar] = place->second;
    node = place->second;
  }
  nodes_[node].isNeedle = true;
  longest_ = std::max(longest_, nodes_[node].depth);
  return node;
}

void StringSetSearch::linkFallbacks() {
  struct Edge {
    NodeIndex parent, child;
    char32_t scalar;
  };
  std::vector<Edge> edges;
  edges.reserve(children_.size());
  for (const auto& [key, child] : children_) {
    edges.push_back({static_cast<NodeIndex>(key >> 32), child, static_cast<char32_t>(key)});
  }
  // Shorter suffixes first, so that the fallbacks of a node's parent are known.
  std::sort(edges.begin(), edges.end(), [&](const Edge& a, const Edge& b) {
    return nodes_[a.child].depth < nodes_[b.child].depth;
  });
  for (const auto& [parent, childNode, scalar] : edges) {
    Node& node = nodes_[childNode];
    if (parent != kRoot) node.fallback = advance(nodes_[parent].fallback, scalar);
    node.shorter = longestNeedle(node.fallback);
  }
}

StringSetSearch::NodeIndex StringSetSearch::child(NodeIndex node, char32_t scalar) const {
  if (node == kRoot && scalar < firstASCII_.size()) return firstASCII_[scalar];
  const auto found = children_.find(childKey(node, scalar));
  return found == children_.end() ? kRoot : found->second;
}

StringSetSearch::NodeIndex StringSetSearch::advance(NodeIndex node, char32_t scalar) const {
  for (;; node = nodes_[node].fallback) {
    const NodeIndex next = child(node, scalar);
    if (next != kRoot || node == kRoot) return next;
  }
}

std::vector<bool> StringSetSearch::found(std::string_view text) const {
  const std::vector<char32_t> form = markedForm(text, folding_);
  std::vector<bool> seen(nodes_.size());
  NodeIndex node = kRoot;
  for (std::size_t place = form.size(); place-- > 0;) {
    node = advance(node, form[place] & ~kUnitStart);
    if (!isBetweenUnits(form, place)) continue;
    for (NodeIndex at = longestNeedle(node); at != kRoot; at = nodes_[at].shorter) {
      if (isBetweenUnits(form, place + nodes_[at].depth)) seen[at] = true;
    }
  }
  std::vector<bool> result;
  result.reserve(needles_.size());
  for (const NodeIndex needle : needles_) result.push_back(needle != kRoot && seen[needle]);
  return result;
}

std::size_t StringSetSearch::count(std::string_view text) const {
  const std::vector<char32_t> form = markedForm(text, folding_);
  // A ring of match counts from each position on, for the positions that a match can reach.
  std::vector<std::size_t> counts(std::bit_ceil(std::size_t{longest_} + 2));
  const std::size_t mask = counts.size() - 1;
  NodeIndex node = kRoot;
  for (std::size_t place = form.size(); place-- > 0;) {
    node = advance(node, form[place] & ~kUnitStart);
    std::size_t& count = counts[place & mask];
    count = counts[(place + 1) & mask];
    if (!isBetweenUnits(form, place)) continue;
    for (NodeIndex at = longestNeedle(node); at != kRoot; at = nodes_[at].shorter) {
      const std::size_t end = place + nodes_[at].depth;
      if (!isBetweenUnits(form, end)) continue;
      count = counts[end & mask] + 1;
      break;
    }
  }
  return counts[0];
}

}  // namespace platform::text
