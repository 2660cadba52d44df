#pragma once

#include <string>
#include <vector>

#include "ArgumentParser/command_line.h"

/// The program's side of completion. To get the candidates for a value, a completion script calls
///
///   tool ---completion tags add -- --tag tool tags add --tag wo
///
/// with the path of subcommands, the argument (its name, or "positional@0"), and the words of the
/// line up to the cursor, and reads one candidate per line. The environment variables SAP_SHELL and
/// SAP_SHELL_VERSION give the shell's name and version.
namespace ArgumentParser {

bool isCompletionRequest(const std::vector<std::string>& tokens);

/// The candidates, one per line; empty also if computing them fails. Throws a ParserError if the
/// request does not name an argument of the tree.
std::string completionAnswer(const CommandType& root, const std::vector<std::string>& tokens);

/// How a completion script refers to an argument in a request: "--tag", or "positional@0".
std::string completionIdentifier(const ArgumentSet& arguments,
                                 const ArgumentDefinition& definition);

}  // namespace ArgumentParser
