#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ArgumentParser/parsable_command.h"
#include "cli/session.h"

namespace tavi {

/// The root command, and the main function of the program.
class TaviCLI : public ArgumentParser::ParsableCommand {
 public:
  static ArgumentParser::CommandConfiguration configuration();
  void declare(ArgumentParser::ArgumentSet& args) override;

  /// Handles the arguments, which exclude the program's name. Absent if a command completed
  /// successfully; otherwise the exit code, which is 0 for help and the version.
  static std::optional<int> main(const std::vector<std::string>& arguments);
  static std::optional<int> main(const std::vector<std::string>& arguments, Session& session);

 private:
  bool version_ = false;  // only declared for the help page: main handles it before parsing
};

}  // namespace tavi
