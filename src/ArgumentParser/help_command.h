#pragma once

#include <string>
#include <vector>

#include "ArgumentParser/parsable_command.h"

namespace ArgumentParser {

/// The child that every root has: `help tags add` shows the page of `tags add`. It stands on no
/// page itself, and the parser answers it in its place.
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
