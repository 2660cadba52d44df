#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ArgumentParser/completion_kind.h"
#include "ArgumentParser/name.h"

namespace ArgumentParser {

/// Where an option takes its value from.
enum class ParsingStrategy {
  standard,       ///< the attached `=value`, else the next token if it is a plain value
  unconditional,  ///< the attached `=value`, else the next token, whatever it looks like
};

/// One argument of a command: how it is written, where its value goes, and what help says of it.
struct ArgumentDefinition {
  enum class Kind { positional, option, flag };

  Kind kind = Kind::positional;
  Names names;  ///< none for a positional
  ParsingStrategy parsingStrategy = ParsingStrategy::standard;

  /// Stores a value, or adds it to a list. False when the text stands for no value; may throw
  /// an error of its own. A flag is set whatever the text.
  std::function<bool(std::string_view)> update;

  std::string abstract;
  std::string discussion;
  std::string valueName;                     ///< "note-id", shown as <note-id>; empty for a flag
  std::string defaultValue;                  ///< as help shows it; empty for none
  std::vector<std::string> allValueStrings;  ///< of an enumeration
  std::string sectionTitle;                  ///< of its help section; empty for the usual one
  CompletionKind completion;                 ///< as declared; see completionKind()
  bool isOptional = true;
  bool isRepeating = false;
  bool isVisible = true;

  bool isPositional() const { return kind == Kind::positional; }
  bool isFlag() const { return kind == Kind::flag; }

  /// How a shell completes the value: as declared, else an enumeration from its values.
  CompletionKind completionKind() const;

  /// One occurrence: "--title <title>", "--force", "<tags>".
  std::string form() const;
  /// As in a usage line: "[--title <title>]", "[<tags> ...]", "<note-id>".
  std::string synopsis() const;
  /// As in a help page: "-t, --title <title>", "<note-id>".
  std::string label() const;
};

}  // namespace ArgumentParser
