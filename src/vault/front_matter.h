#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Front matter is YAML 1.1 (parsed by libyaml) at the start of a text, between a first line "---"
/// and the next line "---" or "...".
namespace tavi::vault {

/// One key of the front matter and its values.
struct Field {
  std::string key;                  ///< ASCII letters in lower case
  std::vector<std::string> values;  ///< one for a text, several for a list, none for null
  bool isList = false;
  bool isUnderstood = true;  ///< false if the value is neither a text nor a list of texts
};

/// The front matter of a text.
struct FrontMatter {
  std::size_t end = 0;        ///< byte offset of the end of the closing line, with its line break
  bool isValid = false;       ///< whether it is a YAML mapping with scalar keys
  std::vector<Field> fields;  ///< empty unless isValid

  /// Null if there is no such field.
  const Field* find(std::string_view key) const;
  /// The field's first value; empty if there is no such field.
  std::string value(std::string_view key) const;
  /// The field's values; empty if there is no such field.
  std::vector<std::string> values(std::string_view key) const;
};

/// Absent if the text does not begin with front matter. The text must not have a byte order mark.
std::optional<FrontMatter> readFrontMatter(std::string_view text);

/// Formats front matter, including the lines "---". Fields keep their order; a field that is not a
/// list is written as its first value.
std::string writeFrontMatter(const std::vector<Field>& fields);

}  // namespace tavi::vault
