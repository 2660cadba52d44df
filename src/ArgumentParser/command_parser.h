#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ArgumentParser/command_tree.h"
#include "ArgumentParser/split_arguments.h"

namespace ArgumentParser {

/// Parses one command line. From the root down, each command takes its arguments from the line and
/// is validated; the first token that is left names the next command. A request for help takes
/// precedence over a missing argument and a failed validation.
class CommandParser {
 public:
  /// Keeps a reference to `tokens`.
  CommandParser(const CommandType& root, const std::vector<std::string>& tokens)
      : stack_{root}, tokens_(tokens) {}

  std::unique_ptr<ParsableCommand> parse();  ///< throws CommandError

 private:
  std::unique_ptr<ParsableCommand> descend(SplitArguments& line);
  std::unique_ptr<ParsableCommand> parseCurrent(SplitArguments& line) const;
  std::optional<CommandType> nextSubcommand(SplitArguments& line) const;
  std::optional<CommandType> namedSubcommand(std::string_view name) const;
  void checkForBuiltInFlags(SplitArguments& line) const;
  bool asksForHelp(SplitArguments& line) const;
  [[noreturn]] void showHelp(const std::vector<std::string>& path);

  CommandStack stack_;
  const std::vector<std::string>& tokens_;
};

}  // namespace ArgumentParser
