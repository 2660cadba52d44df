#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace ArgumentParser {

/// One name of an option or flag, made from the way it is written: `--name`, `-n`, or the rare
/// `-name`.
struct Name {
  enum class Kind { longName, shortName, longWithSingleDash };

  Kind kind = Kind::longName;
  std::string text;  ///< without dashes; one character for a short name

  static Name parse(std::string_view written);
  std::string written() const;  ///< with its dashes

  bool operator==(const Name&) const = default;
};

/// The names of one option or flag in declared order: `"--force"`, `{"-t", "--title"}`.
struct Names : std::vector<Name> {
  Names() = default;
  Names(const char* written);
  Names(std::initializer_list<std::string_view> written);

  /// The first long name, else the first name: what usage lines and messages show. Null when
  /// there is none.
  const Name* preferred() const;
};

}  // namespace ArgumentParser
