#include "platform/text/lookalikes.h"

#include <string>

namespace platform::text {

std::vector<std::string_view> lookalikesIn(std::string_view needle, CaseFolding folding) {
  const bool full = folding == CaseFolding::full;
  const std::string form = full ? foldedForSearch(needle) : std::string(needle);
  std::vector<std::string_view> result;
  for (const Lookalike& lookalike : kLookalikes) {
    const std::string_view part = full ? lookalike.form : lookalike.exact;
    if (!part.empty() && form.find(part) != std::string::npos) result.push_back(lookalike.scalar);
  }
  return result;
}

}  // namespace platform::text
