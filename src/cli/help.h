#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ArgumentParser/command_line.h"
#include "cli/error_report.h"

/// Requests for help are recognised in the raw arguments, before they are parsed.
namespace tavi {

/// A command with additional text below its help page.
struct HelpFooter {
  virtual ~HelpFooter() = default;
  virtual std::string_view footer() const = 0;
};

/// No arguments, `help`, or a help flag without a command.
bool isShortHelpRequest(const Arguments& arguments);
/// `help all`.
bool isFullReferenceRequest(const Arguments& arguments);
/// The words that name the command of a help request; absent if the arguments do not ask for help.
/// Every argument without a leading dash is a word, even the value of an option.
std::optional<std::vector<std::string>> helpTargetPath(const Arguments& arguments);
/// The deepest command that a prefix of the words names; absent if the first word is unknown.
std::optional<ArgumentParser::CommandStack> resolveCommandPath(
    const ArgumentParser::CommandType& root, const std::vector<std::string>& path);

// Each text ends with a line break.
std::string commandHelp(const ArgumentParser::CommandStack& stack);
std::string shortOverview(const ArgumentParser::CommandType& root);
std::string fullReference(const ArgumentParser::CommandType& root);  ///< the help of all commands

}  // namespace tavi
