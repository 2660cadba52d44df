#pragma once

#include <string>

#include "ArgumentParser/command_line.h"
#include "ArgumentParser/completion_shell.h"
#include "ArgumentParser/completion_tree.h"

namespace ArgumentParser {

/// A script that a shell sources to complete the program's command lines. It does not end with a
/// line break.
std::string completionScript(const CommandType& root, CompletionShell shell);

std::string bashCompletionScript(const CompletionCommand& root);
std::string zshCompletionScript(const CompletionCommand& root);
std::string fishCompletionScript(const CompletionCommand& root);

}  // namespace ArgumentParser
