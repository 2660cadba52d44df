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

/// A command line split into elements (values, options, the terminator) before any command takes
/// its arguments. Each element records whether it has been used.
///
///   x  -  (empty)    a value
///   --name           an option
///   --name=value     an option with a value
///   -n  -n=value     the same with a short name
///   -abc             the option "-abc" or the options "-a", "-b" and "-c": four elements
///   --               the terminator: all tokens after it are values
///
/// The constructor refuses malformed tokens: `---x`, `--=x`, `-?`, and `-n?`.
class SplitArguments {
 public:
  /// One possible meaning of a token.
  struct Element {
    enum class Kind {
      value,
      optionValue,  ///< the value of the option before it, whatever it looks like
      option,
      terminator
    };

    Kind kind = Kind::value;
    std::size_t position = 0;                    ///< the index of its token
    Name name = {};                              ///< the option's name
    std::optional<std::string_view> value = {};  ///< attached to an option with "="
    bool isUsed = false;
  };

  /// `isOptionValue` is the result of `unconditionalValues`; such tokens are never malformed. Keeps
  /// a reference to `tokens`. Throws a ParserError.
  SplitArguments(const std::vector<std::string>& tokens, const std::vector<bool>& isOptionValue);

  std::vector<Element>& elements() { return elements_; }
  const std::string& token(std::size_t position) const { return tokens_[position]; }
  bool hasToken(std::size_t position) const { return position < tokens_.size(); }

  /// The elements of one token.
  std::span<Element> elementsAt(std::size_t position);
  void useToken(std::size_t position);  ///< marks all elements of the token as used

  const Element* firstUnused() const;          ///< may be the terminator
  std::vector<const Element*> unused() const;  ///< without the terminator

 private:
  void splitOption(std::size_t position);

  const std::vector<std::string>& tokens_;
  std::vector<Element> elements_;
  std::vector<std::size_t> firstElement_;  // by position
};

/// Whether the character is a letter or a digit; every non-ASCII character counts as a letter.
bool isShortName(std::string_view character);

}  // namespace ArgumentParser
