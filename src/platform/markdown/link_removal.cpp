#include "platform/markdown/link_removal.h"

#include "platform/markdown/removal.h"

namespace zephyrdown {
namespace {

using Files = std::vector<FileMention>;
using NameTest = std::function<bool(std::string_view)>;

/// Whether the label of `file` contains an image of a file that stays.
bool holdsOtherFile(const Files& files, Files::const_iterator file, const NameTest& shouldRemove) {
  for (auto inner = std::next(file);
       inner != files.end() && inner->link.range.begin < file->label.end; ++inner) {
    if (!shouldRemove(inner->link.filename)) return true;
  }
  return false;
}

Operations plannedRound(std::string_view text, const Document& document,
                        const NameTest& shouldRemove) {
  std::vector<ByteRange> whole;
  Operations unwrapped;
  const Files& files = document.files;
  for (auto file = files.begin(); file != files.end(); ++file) {
    const auto& [link, label] = *file;
    if (!whole.empty() && link.range.begin < whole.back().end) continue;
    if (!shouldRemove(link.filename)) continue;
    if (holdsOtherFile(files, file, shouldRemove)) {
      unwrapped.push_back({{link.range.begin, label.begin}, {}});
      unwrapped.push_back({{label.end, link.range.end}, {}});
    } else {
      whole.push_back(link.range);
    }
  }
  Operations results = plannedRemoval(text, whole);
  results.insert(results.end(), unwrapped.begin(), unwrapped.end());
  return results;
}

}  // namespace

Operations plannedLinkRemoval(std::string_view text, const Document& document,
                              const NameTest& shouldRemove) {
  // Brackets around a link are text, but may become a link when it is removed. The limit is for
  // texts crafted to nest that way.
  constexpr int kMostRounds = 50;
  Operations results = plannedRound(text, document, shouldRemove);
  if (results.empty()) return results;
  std::string changed = withOperations(text, results);
  Operations more = plannedRound(changed, readDocument(changed), shouldRemove);
  if (more.empty()) return results;
  for (int round = 0; !more.empty() && round < kMostRounds; ++round) {
    changed = withOperations(changed, more);
    more = plannedRound(changed, readDocument(changed), shouldRemove);
  }
  return {difference(text, changed)};
}

}  // namespace zephyrdown
