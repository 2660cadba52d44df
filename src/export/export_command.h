#pragma once

#include <string>

#include "ArgumentParser/parsable_command.h"

namespace tavi::exporting {

/// The program tavi-export.
class ExportCommand : public ArgumentParser::ParsableCommand {
 public:
  static ArgumentParser::CommandConfiguration configuration();
  void declare(ArgumentParser::ArgumentSet& args) override;
  /// Prints a report. Throws the error that stopped the export, or an ArgumentParser::ExitCode.
  void run() override;

 private:
  std::string folder_;
  bool git_ = false;
};

}  // namespace tavi::exporting
