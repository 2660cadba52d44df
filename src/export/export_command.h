#pragma once

#include <string>

#include "ArgumentParser/parsable_command.h"

namespace tavi::exporting {

/// The program tavi-export.
class ExportCommand : public ArgumentParser::ParsableCommand {
 public:
  static ArgumentParser::CommandConfiguration configuration();
  void declare(ArgumentParser::ArgumentSet& args) override;
  /// Prints what was done. Throws what stopped it, and ArgumentParser::ExitCode.
  void run() override;

 private:
  std::string folder_;
  bool git_ = false;
};

}  // namespace tavi::exporting
