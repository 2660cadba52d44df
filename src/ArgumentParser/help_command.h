#pragma once

#include <string>
#include <vector>

#include "ArgumentParser/parsable_command.h"

namespace ArgumentParser {

/// The `help` subcommand that every root has: `help tags add` shows the help page of `tags add`.
/// Help pages do not list it, and it never runs: the parser shows the page itself.
class HelpCommand : public ParsableCommand {
 public:
  static CommandConfiguration configuration() {
    return {.commandName = "help",
            .abstract = "Show subcommand help information.",
            .shouldDisplay = false};
  }
  void declare(ArgumentSet& args) override { args.argument(subcommands, "subcommands"); }

  std::vector<std::string> subcommands;
};

}  // namespace ArgumentParser
