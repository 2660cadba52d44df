#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "ArgumentParser/parsable_command.h"

/// The one place where failures become output and exit codes: 1 for what could not be done, 64
/// for what could not be understood.
namespace tavi {

using Arguments = std::vector<std::string>;

/// Whether the arguments ask for JSON, whatever the parser would make of them: a line that cannot
/// be parsed is reported in JSON too.
bool wantsJSONOutput(const Arguments& arguments);

class ErrorReporter {
 public:
  ErrorReporter(const ArgumentParser::CommandType& root, const Arguments& arguments)
      : root_(root), arguments_(arguments), jsonErrorMode_(wantsJSONOutput(arguments)) {}

  // Each writes the report, and gives the exit code.
  int reportUsage(std::string_view message) const;
  /// A line that the parser did not take, or that asks for a page of its.
  int reportParseError(const std::exception_ptr& error) const;
  /// What a command's run threw.
  int reportCommandError(const std::exception_ptr& error) const;

 private:
  int report(std::string_view code, std::string_view message, int exitCode) const;
  int reportAsParser(const std::exception_ptr& error) const;

  ArgumentParser::CommandType root_;
  const Arguments& arguments_;
  bool jsonErrorMode_;
};

}  // namespace tavi
