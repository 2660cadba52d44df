#pragma once

#include "ArgumentParser/argument_set.h"
#include "ArgumentParser/split_arguments.h"

namespace ArgumentParser {

/// Gives the arguments of one command their values from the line, and marks what it used. What
/// it does not know stays for the commands below it. Throws ParserErrors.
/// Returns the first required argument without a value, as an index, or absent.
std::optional<std::size_t> parseLevel(const ArgumentSet& arguments, SplitArguments& line);

}  // namespace ArgumentParser
