#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zephyrdown {

/// The rules of a tag's name and of its written form.
struct ZDKHashtag {
  /// The canonical name: surrounding hash marks and white space stripped, at both ends and around
  /// the slashes of a nested name, empty levels dropped. Nothing when no name is left or when the
  /// name cannot be written as a hashtag at all (it holds a line break or a hash mark).
  static std::optional<std::string> sanitizeTagName(std::string_view text);

  /// "#work", "#nested/child"; "#multi word#" where the name needs a closing mark to be read back
  /// whole. Nothing when no written form yields the name. `name` is taken as canonical.
  static std::optional<std::string> hashtagStringForTagName(std::string_view name);
};

}  // namespace zephyrdown
