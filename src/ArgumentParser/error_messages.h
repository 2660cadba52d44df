#pragma once

#include <string>

#include "ArgumentParser/parser_error.h"

namespace ArgumentParser {

/// The wording of an error that is not a request; `stack` ends in the command that it concerns.
struct ErrorText {
  std::string message;
  std::string help;  ///< form and meaning of the argument concerned; may be empty
};

ErrorText errorText(const ParserError& error, const CommandStack& stack);

}  // namespace ArgumentParser
