#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ArgumentParser/name.h"
#include "ArgumentParser/parser_error.h"

namespace ArgumentParser {

/// A line split into what its tokens may mean, before any command has taken its arguments, and a
/// mark on what has been used.
///
///   x  -  (empty)    a value
///   --name           an option
///   --name=value     an option with a value
///   -n  -n=value     the same with a short name
///   -abc             the option "-abc", else the options "-a", "-b" and "-c": four elements
///   --               the terminator: all tokens after it are values
///
/// Malformed, and refused at once: `---x`, `--=x`, `-?`, and one letter with a sign, `-n?`.
class SplitArguments {
 public:
  struct Element {
    enum class Kind {
      value,
      optionValue,  ///< taken by the option before it, whatever it looks like; no positional
      option,
      terminator
    };

    Kind kind = Kind::value;
    std::size_t position = 0;                    ///< of its token
    Name name = {};                              ///< of an option
    std::optional<std::string_view> value = {};  ///< attached to an option with "="
    bool isUsed = false;
  };

  /// `isOptionValue`: by position, as `unconditionalValues` gives it; such tokens are never
  /// malformed. Keeps a reference to the tokens. Throws a ParserError.
  SplitArguments(const std::vector<std::string>& tokens, const std::vector<bool>& isOptionValue);

  std::vector<Element>& elements() { return elements_; }
  const std::string& token(std::size_t position) const { return tokens_[position]; }
  bool hasToken(std::size_t position) const { return position < tokens_.size(); }

  /// All that the token at this place may mean.
  std::span<Element> elementsAt(std::size_t position);
  void useToken(std::size_t position);

  const Element* firstUnused() const;          ///< may be the terminator
  std::vector<const Element*> unused() const;  ///< without the terminator

 private:
  void splitOption(std::size_t position);

  const std::vector<std::string>& tokens_;
  std::vector<Element> elements_;
  std::vector<std::size_t> firstElement_;  // by position
};

/// A letter or a digit; every character beyond ASCII counts as a letter.
bool isShortName(std::string_view character);

}  // namespace ArgumentParser
