#pragma once

#include <string>

#include "ArgumentParser/parser_error.h"

namespace ArgumentParser {

/// What a user is told of an error that is no request, about the last command of the stack.
struct ErrorText {
  std::string message;
  std::string help;  ///< form and meaning of the argument concerned; may be empty
};

ErrorText errorText(const ParserError& error, const CommandStack& stack);

}  // namespace ArgumentParser
