#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zephyrdown {

/// Converts between a tag's name and its hashtag. hashtag_grammar.h finds hashtags in texts.
struct ZDKHashtag {
  /// The canonical name: without surrounding hash marks, white space at the ends and around
  /// slashes, and empty levels. Absent if no name is left, or if no hashtag can have this name, for
  /// example because it contains a line break or a hash mark.
  static std::optional<std::string> sanitizeTagName(std::string_view text);

  /// The hashtag of a name: "#work", "#nested/child", or "#multi word#" if the name needs a closing
  /// mark. Absent if no hashtag has this name. `name` must be canonical.
  static std::optional<std::string> hashtagStringForTagName(std::string_view name);

  /// Whether `name` is the tag or a descendant of it.
  static bool isTagOrDescendant(std::string_view name, std::string_view tag);
  /// The name that a tag has once `from` is renamed: `work/a` becomes `job/a`. Absent if it is
  /// neither that tag nor a descendant.
  static std::optional<std::string> renamedTagName(std::string_view name, std::string_view from,
                                                   std::string_view to);
};

}  // namespace zephyrdown
