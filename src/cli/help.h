#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ArgumentParser/command_line.h"
#include "cli/error_report.h"

/// Help is served from the raw arguments, before anything is parsed.
namespace tavi {

/// A command with a text of its own below its help page.
struct HelpFooter {
  virtual ~HelpFooter() = default;
  virtual std::string_view footer() const = 0;
};

/// No arguments, `help`, or a help flag without a command.
bool isShortHelpRequest(const Arguments& arguments);
/// `help all`.
bool isFullReferenceRequest(const Arguments& arguments);
/// The words that name the command whose help is asked for. A word is whatever begins with no
/// dash, the values of options included.
std::optional<std::vector<std::string>> helpTargetPath(const Arguments& arguments);
/// The command that the words lead to, as far as they do; nothing when the first one is unknown.
std::optional<ArgumentParser::CommandStack> resolveCommandPath(
    const ArgumentParser::CommandType& root, const std::vector<std::string>& path);

std::string commandHelp(const ArgumentParser::CommandStack& stack);
std::string shortOverview(const ArgumentParser::CommandType& root);
std::string fullReference(const ArgumentParser::CommandType& root);

}  // namespace tavi
