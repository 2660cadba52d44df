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

/// A line cut into what its tokens may mean, before any command is known, and a mark on what has
/// been used.
///
///   x  -  (empty)    a value
///   --name           an option
///   --name=value     an option with a value
///   -n  -n=value     the same with a short name
///   -abc             the option "-abc", else the options "-a", "-b" and "-c": four elements
///   --               the terminator: all tokens behind it are values
///   ---x  --=x  -?   malformed
class SplitArguments {
 public:
  struct Element {
    enum class Kind { value, option, terminator, malformed };

    Kind kind = Kind::value;
    std::size_t position = 0;                    ///< of its token
    Name name = {};                              ///< of an option
    std::optional<std::string_view> value = {};  ///< attached to an option with "="
    bool isUsed = false;
  };

  /// Throws a ParserError for a malformed token, unless it stands behind an option, whose value
  /// it may prove to be.
  /// Keeps a reference to the tokens.
  explicit SplitArguments(const std::vector<std::string>& tokens);

  std::vector<Element>& elements() { return elements_; }
  const std::string& token(std::size_t position) const { return tokens_[position]; }
  bool hasToken(std::size_t position) const { return position < tokens_.size(); }

  /// All that the token at this place may mean.
  std::span<Element> elementsAt(std::size_t position);
  void useToken(std::size_t position);

  const Element* firstUnused() const;          ///< may be the terminator
  std::vector<const Element*> unused() const;  ///< without the terminator

  /// Whether the token may be an option's value, from its place on the line.
  bool standsBehindOption(std::size_t position) const;

 private:
  void split(std::size_t position);
  void splitOption(std::size_t position, std::size_t dashes);

  const std::vector<std::string>& tokens_;
  std::vector<Element> elements_;
  std::vector<std::size_t> firstElement_;  // by position
};

/// A letter or a digit; every character beyond ASCII counts as a letter.
bool isShortName(std::string_view character);

/// What is wrong with a malformed token.
ParserError malformation(std::string_view token);

}  // namespace ArgumentParser
