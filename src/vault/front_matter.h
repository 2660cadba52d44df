#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Front matter: YAML 1.1 (libyaml) between "---" on a text's first line and the next "---" or
/// "...".
namespace tavi::vault {

struct Field {
  std::string key;                  ///< in lower case (ASCII)
  std::vector<std::string> values;  ///< one, those of a list, or none where the value is null
  bool isList = false;
  bool isUnderstood = true;  ///< false of values that are neither texts nor lists of texts
};

struct FrontMatter {
  std::size_t end = 0;   ///< of the closing line, its line break included, in bytes of the text
  bool isValid = false;  ///< whether it is YAML with names and values; else there are no fields
  std::vector<Field> fields;

  const Field* find(std::string_view key) const;
  /// The first value; empty where there is no such field.
  std::string value(std::string_view key) const;
  std::vector<std::string> values(std::string_view key) const;
};

/// Absent where the text does not begin with front matter. A byte order mark must be gone.
std::optional<FrontMatter> readFrontMatter(std::string_view text);

/// The lines with both marks, in the order of the fields: lists as lists, others as one text.
std::string writeFrontMatter(const std::vector<Field>& fields);

}  // namespace tavi::vault
