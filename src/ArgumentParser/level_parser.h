#pragma once

#include "ArgumentParser/argument_set.h"
#include "ArgumentParser/split_arguments.h"

namespace ArgumentParser {

/// Gives the arguments of one command their values from the line, and marks what it used. What
/// it does not know stays for the commands below it. Throws ParserErrors.
/// `flagsElsewhere`: names that are no arguments of the command and yet known, such as `-h`.
/// Returns the index of the first required argument without a value, or nothing.
std::optional<std::size_t> parseLevel(const ArgumentSet& arguments, const Names& flagsElsewhere,
                                      SplitArguments& line);

}  // namespace ArgumentParser
