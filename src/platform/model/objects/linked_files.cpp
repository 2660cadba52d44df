#include "platform/model/objects/linked_files.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "platform/text/folding.h"

namespace tavimodel {
namespace {

using platform::text::canonicallyComposed;
using zephyrdown::FileLink;

using Ranks = std::vector<std::size_t>;
constexpr std::size_t noLink = std::numeric_limits<std::size_t>::max();

/// For each file, the index of the first link to it, or `noLink`.
Ranks firstLinks(const std::vector<KVNoteFile>& files, const std::vector<FileLink>& links) {
  std::unordered_set<std::string> names;
  for (const KVNoteFile& file : files) names.insert(file.filename.value_or(""));
  std::unordered_map<std::string, std::size_t> exact;
  std::unordered_map<std::string, std::size_t> equivalent;
  for (std::size_t i = 0; i < links.size(); ++i) {
    const std::string& name = links[i].filename;
    if (names.contains(name)) {
      exact.emplace(name, i);
    } else {
      equivalent.emplace(canonicallyComposed(name), i);
    }
  }
  const auto rank = [](const auto& map, const std::string& name) {
    const auto found = map.find(name);
    return found == map.end() ? noLink : found->second;
  };
  Ranks ranks;
  for (const KVNoteFile& file : files) {
    const std::string name = file.filename.value_or("");
    ranks.push_back(std::min(rank(exact, name), rank(equivalent, canonicallyComposed(name))));
  }
  return ranks;
}

}  // namespace

std::vector<KVNoteFile> filesAfterChange(std::vector<KVNoteFile> files,
                                         const std::vector<FileLink>& before,
                                         const std::vector<FileLink>& after) {
  if (files.empty()) return files;
  const Ranks now = firstLinks(files, after);
  std::vector<std::size_t> order(files.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  if (!before.empty()) {
    const Ranks then = firstLinks(files, before);
    std::erase_if(order, [&](std::size_t i) { return then[i] != noLink && now[i] == noLink; });
  }
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return now[a] < now[b]; });
  std::vector<KVNoteFile> result;
  for (const std::size_t i : order) {
    result.push_back(std::move(files[i]));
    result.back().position = static_cast<std::int64_t>(result.size() - 1);
  }
  return result;
}

}  // namespace tavimodel
