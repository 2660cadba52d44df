#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ArgumentParser/completion_kind.h"
#include "ArgumentParser/name.h"

namespace ArgumentParser {

/// How an option finds its value.
enum class ParsingStrategy {
  standard,       ///< the attached `=value`, else the next token if it is a plain value
  unconditional,  ///< the attached `=value`, else the next token, whatever it looks like
};

/// One declared argument of a command: its syntax, the function that stores its value, and its help
/// texts.
struct ArgumentDefinition {
  enum class Kind { positional, option, flag };

  Kind kind = Kind::positional;
  Names names;  ///< empty for a positional
  ParsingStrategy parsingStrategy = ParsingStrategy::standard;

  /// Parses the text and assigns the value to the bound variable, or appends it to the bound list.
  /// False if the text is not a value of the variable's type; may also throw an error that says
  /// why. A flag ignores the text and becomes true.
  std::function<bool(std::string_view)> update;

  std::string abstract;      ///< one line of help
  std::string discussion;    ///< further help, shown below the abstract
  std::string valueName;     ///< "note-id", shown as <note-id>; empty for a flag
  std::string defaultValue;  ///< as help shows it; empty if there is no default
  std::vector<std::string>
      allValueStrings;        ///< all values of an enumeration; empty for other types
  std::string sectionTitle;   ///< the help section; empty: ARGUMENTS or OPTIONS
  CompletionKind completion;  ///< as declared; completionKind() is what applies
  bool isOptional = true;
  bool isRepeating = false;
  bool isVisible = true;  ///< in help and completions

  bool isPositional() const { return kind == Kind::positional; }
  bool isFlag() const { return kind == Kind::flag; }

  /// How a shell completes the value: as declared, else from the values of an enumeration.
  CompletionKind completionKind() const;

  /// As messages show it: "--title <title>", "--force", "<tags>".
  std::string form() const;
  /// As a usage line shows it: "[--title <title>]", "[<tags> ...]", "<note-id>".
  std::string synopsis() const;
  /// As a help page lists it: "-t, --title <title>", "<note-id>".
  std::string label() const;
};

}  // namespace ArgumentParser
