#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace ArgumentParser {

/// One name of an option or flag: `--name`, `-n`, or rarely `-name`.
struct Name {
  enum class Kind { longName, shortName, longWithSingleDash };

  Kind kind = Kind::longName;
  std::string text;  ///< without dashes; one character for a short name

  static Name parse(std::string_view written);  ///< `written` includes the dashes
  std::string written() const;                  ///< including the dashes

  bool operator==(const Name&) const = default;
};

/// The names of one option or flag in the order of declaration: `"--force"`, `{"-t", "--title"}`.
struct Names : std::vector<Name> {
  Names() = default;
  Names(const char* written);
  Names(std::initializer_list<std::string_view> written);

  /// The name that usage lines and messages show: the first long name, else the first name. Null if
  /// there are no names.
  const Name* preferred() const;
};

}  // namespace ArgumentParser
