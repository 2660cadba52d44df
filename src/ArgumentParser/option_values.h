#pragma once

#include <string>
#include <vector>

#include "ArgumentParser/parsable_command.h"

namespace ArgumentParser {

/// By position: whether the token is an option's value whatever it looks like, since an option with
/// the `unconditional` strategy stands right before it. The options are those of the commands that
/// the line names, so that this is known before the line is split.
std::vector<bool> unconditionalValues(const CommandType& root,
                                      const std::vector<std::string>& tokens);

}  // namespace ArgumentParser
