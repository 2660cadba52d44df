#pragma once

#include <string>
#include <vector>

#include "ArgumentParser/parsable_command.h"

namespace tavi::import {

/// The program tavi-import.
class ImportCommand : public ArgumentParser::ParsableCommand {
 public:
  static ArgumentParser::CommandConfiguration configuration();
  void declare(ArgumentParser::ArgumentSet& args) override;
  void validate() override;
  /// Prints a report, even if the import fails. Throws the error that stopped the import, or an
  /// ArgumentParser::ExitCode.
  void run() override;

 private:
  std::vector<std::string> folders_;
  std::vector<std::string> tags_;
  std::string encoding_;
  bool dryRun_ = false, noFolderTags_ = false;
};

}  // namespace tavi::import
