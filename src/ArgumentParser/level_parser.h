#pragma once

#include "ArgumentParser/argument_set.h"
#include "ArgumentParser/split_arguments.h"

namespace ArgumentParser {

/// Assigns values from the line to the arguments of one command and marks the elements that it
/// used. Elements that it does not know are left for the subcommands. Throws a ParserError.
/// `flagsElsewhere`: names that are valid here but are not arguments of the command, such as `-h`.
/// Returns the index of the first required argument without a value; absent if all have one.
std::optional<std::size_t> parseLevel(const ArgumentSet& arguments, const Names& flagsElsewhere,
                                      SplitArguments& line);

}  // namespace ArgumentParser
