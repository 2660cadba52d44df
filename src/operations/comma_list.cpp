#include "operations/comma_list.h"

#include <algorithm>

#include "platform/text/utf8.h"

namespace tavi {

std::vector<std::string> trimmedPieces(std::string_view text) {
  std::vector<std::string> pieces;
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, text.find(','));
    if (!piece.empty()) pieces.emplace_back(platform::text::trimmingBlanks(piece));
    text.remove_prefix(std::min(piece.size() + 1, text.size()));
  }
  return pieces;
}

std::string joined(std::span<const std::string_view> texts, std::string_view separator) {
  std::string result;
  for (std::size_t i = 0; i < texts.size(); ++i)
    result.append(i > 0 ? separator : "").append(texts[i]);
  return result;
}

}  // namespace tavi
