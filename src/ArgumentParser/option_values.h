#pragma once

#include <string>
#include <vector>

#include "ArgumentParser/parsable_command.h"

namespace ArgumentParser {

/// For each token, whether it is an option's value even if it looks like an option, because the
/// token before it is an option with the `unconditional` strategy. Considers the options of the
/// commands that the line names. SplitArguments needs the answer before it splits the line.
std::vector<bool> unconditionalValues(const CommandType& root,
                                      const std::vector<std::string>& tokens);

}  // namespace ArgumentParser
