#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavi {

/// Converts between the names of tags and their spelling in text. docs/markdown.md has the rules.
struct TagParser {
  /// The canonical name, "work/draft", of a tag in any form, such as "#work/draft"; empty if the
  /// text is not a tag.
  static std::string canonicalName(std::string_view text);
  /// The hashtag for a canonical name; absent if no hashtag parses as that name.
  static std::optional<std::string> writtenForm(std::string_view name);
};

}  // namespace tavi
