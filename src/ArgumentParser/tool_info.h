#pragma once

#include <string>

#include "ArgumentParser/command_line.h"

namespace ArgumentParser {

/// The last command of the stack and all below it as a JSON document, for tools that make man
/// pages and the like.
std::string dumpHelp(const CommandStack& stack);

}  // namespace ArgumentParser
