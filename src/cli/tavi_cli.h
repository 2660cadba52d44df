#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ArgumentParser/parsable_command.h"
#include "cli/session.h"

namespace tavi {

/// The root command, and what happens from the start of the process to its end.
class TaviCLI : public ArgumentParser::ParsableCommand {
 public:
  static ArgumentParser::CommandConfiguration configuration();
  void declare(ArgumentParser::ArgumentSet& args) override;

  /// Serves the arguments, which are without the program's name. Absent when a command ran to its
  /// normal end; else the code to end the process with: 0 for help and the version.
  static std::optional<int> main(const std::vector<std::string>& arguments);
  static std::optional<int> main(const std::vector<std::string>& arguments, Session& session);

 private:
  bool version_ = false;  // served before parsing; declared for the help page
};

}  // namespace tavi
