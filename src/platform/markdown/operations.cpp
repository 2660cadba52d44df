#include "platform/markdown/operations.h"

#include <algorithm>

namespace zephyrdown {

std::string withOperations(std::string_view text, Operations operations) {
  std::stable_sort(operations.begin(), operations.end(),
                   [](const auto& a, const auto& b) { return a.range.begin < b.range.begin; });
  std::size_t size = text.size();
  for (const ZDKASTOperationResult& operation : operations)
    size += operation.replacement.size() - (operation.range.end - operation.range.begin);
  std::string result;
  result.reserve(size);  // a text may be large: no room to grow, and none copied
  std::size_t done = 0;
  for (const ZDKASTOperationResult& operation : operations) {
    result.append(text.substr(done, operation.range.begin - done)).append(operation.replacement);
    done = operation.range.end;
  }
  result.append(text.substr(done));
  return result;
}

ZDKASTOperationResult difference(std::string_view before, std::string_view after) {
  const auto begin = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const auto prefix = static_cast<std::size_t>(begin.first - before.begin());
  before.remove_prefix(prefix);
  after.remove_prefix(prefix);
  const auto end = std::mismatch(before.rbegin(), before.rend(), after.rbegin(), after.rend());
  const auto suffix = static_cast<std::size_t>(end.first - before.rbegin());
  return {{prefix, prefix + before.size() - suffix},
          std::string(after.substr(0, after.size() - suffix))};
}

}  // namespace zephyrdown
