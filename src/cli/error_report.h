#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "ArgumentParser/parsable_command.h"

/// Turns errors into output and exit codes: 64 for usage errors, 1 for all others.
namespace tavi {

/// Command-line arguments without the program's name.
using Arguments = std::vector<std::string>;

/// Whether the arguments contain "--format json", looked up without parsing: errors of an invalid
/// command line are reported in JSON too.
bool wantsJSONOutput(const Arguments& arguments);

/// Reports errors of the current session, as text or as JSON.
class ErrorReporter {
 public:
  /// Keeps a reference to `arguments`.
  ErrorReporter(const ArgumentParser::CommandType& root, const Arguments& arguments)
      : root_(root), arguments_(arguments), jsonErrorMode_(wantsJSONOutput(arguments)) {}

  // Each function writes the report and returns the exit code.
  int reportUsage(std::string_view message) const;
  /// Reports what parsing threw: an error, or a request such as help.
  int reportParseError(const std::exception_ptr& error) const;
  /// Reports what a command's run threw.
  int reportCommandError(const std::exception_ptr& error) const;

 private:
  int report(std::string_view code, std::string_view message, int exitCode) const;
  int reportAsParser(const std::exception_ptr& error) const;

  ArgumentParser::CommandType root_;
  const Arguments& arguments_;
  bool jsonErrorMode_;
};

}  // namespace tavi
