#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavi {

struct TagParser {
  /// The canonical name of any tag text, or the empty text when it holds none.
  static std::string canonicalName(std::string_view text);
  /// The hashtag text of a canonical name, or nothing when no hashtag would be read as that name.
  static std::optional<std::string> writtenForm(std::string_view name);
};

}  // namespace tavi
