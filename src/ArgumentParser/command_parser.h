#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ArgumentParser/command_tree.h"
#include "ArgumentParser/split_arguments.h"

namespace ArgumentParser {

/// One pass over one line: from the root down, each command takes its arguments out of the line
/// and is checked, and the first thing that is left names the next command. Where help is asked
/// for, it wins over a missing argument and a failed check.
class CommandParser {
 public:
  /// Keeps a reference to the line.
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
