#pragma once

#include <string>
#include <vector>

#include "ArgumentParser/command_line.h"

/// The program's side of completion. A script that does not know the candidates for a value calls
///
///   tool ---completion tags add -- --tag tool tags add --tag wo
///
/// with the path of subcommands, the argument (its name, or "positional@0"), and the words of
/// the line up to the cursor, and reads one candidate a line. The shell's name and version come
/// in the variables SAP_SHELL and SAP_SHELL_VERSION.
namespace ArgumentParser {

bool isCompletionRequest(const std::vector<std::string>& tokens);

/// The candidates; empty as well when finding them fails. Throws a ParserError for a request
/// that names no argument of the tree.
std::string completionAnswer(const CommandType& root, const std::vector<std::string>& tokens);

/// How a script names an argument in its request.
std::string completionIdentifier(const ArgumentSet& arguments,
                                 const ArgumentDefinition& definition);

}  // namespace ArgumentParser
