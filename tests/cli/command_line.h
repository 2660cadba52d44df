#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "cli/tavi_cli.h"
#include "support/store_test.h"

namespace tavi::testing {

/// A test that runs command lines within its own process.
class CommandLine : public StoreTest {
 protected:
  /// The result of one run.
  struct Result {
    int exitCode;
    std::string output, errors;
    bool operator==(const Result&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Result& result) {
      return out << result.exitCode << "\n--- output\n"
                 << result.output << "--- errors\n"
                 << result.errors;
    }
  };
  static Result printed(std::string output) { return {0, std::move(output), ""}; }
  static Result refused(int exitCode, const std::string& message) {
    return {exitCode, "", "Error: " + message + "\n"};
  }

  Result run(const std::vector<std::string>& arguments);

  std::optional<std::string> input;  ///< standard input; absent: a terminal
  bool outputIsTerminal = false;
  std::optional<StoreOptions> opened;  ///< the options of the last run's store
  std::string openedURL;
};

}  // namespace tavi::testing
