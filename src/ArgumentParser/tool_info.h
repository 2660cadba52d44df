#pragma once

#include <string>

#include "ArgumentParser/command_line.h"

namespace ArgumentParser {

/// Describes the last command of the stack and its subcommands as a JSON document, for tools that
/// generate man pages and the like.
std::string dumpHelp(const CommandStack& stack);

}  // namespace ArgumentParser
