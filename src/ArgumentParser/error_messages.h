#pragma once

#include <string>

#include "ArgumentParser/parser_error.h"

namespace ArgumentParser {

/// The texts of an error that is not a request.
struct ErrorText {
  std::string message;
  std::string help;  ///< syntax and abstract of the argument at fault; may be empty
};

/// `stack` ends with the command in which the error occurred.
ErrorText errorText(const ParserError& error, const CommandStack& stack);

}  // namespace ArgumentParser
