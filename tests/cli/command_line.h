#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "cli/tavi_cli.h"
#include "memory_note_store.h"

namespace tavi::testing {

/// Runs of the program within the test, on a store in memory.
class CommandLine : public ::testing::Test {
 protected:
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

  /// Runs the arguments on `store`.
  Result run(const std::vector<std::string>& arguments);

  MemoryNoteStore store;
  std::optional<std::string> input;  ///< what stands on standard input; absent: a terminal
  bool outputIsTerminal = false;
  bool appLock = false;                ///< the store refuses to open
  std::optional<StoreOptions> opened;  ///< how the last run opened the store
  std::string openedURL;
};

}  // namespace tavi::testing
