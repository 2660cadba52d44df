#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

#include "domain/store_errors.h"
#include "support/throwaway_home.h"

// docs/scripting.md is the golden file of the contract with scripts: this test runs its examples
// and compares its tables with the program.

namespace tavi::manual {
namespace {

/// The output of a command, including errors, with <id>, <time> and <hash> for values that vary.
std::string answer(const std::string& command) {
  std::FILE* pipe = ::popen(("exec 2>&1; " + command).c_str(), "r");
  std::string text;
  for (int byte; (byte = std::fgetc(pipe)) != EOF;) text += static_cast<char>(byte);
  ::pclose(pipe);
  text = std::regex_replace(text, std::regex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"), "<id>");
  text = std::regex_replace(text, std::regex("[0-9-]{10}T[0-9:]{8}Z"), "<time>");
  text = std::regex_replace(text, std::regex("(\"hash\":\"|\t)[0-9a-f]{7}\\b"), "$1<hash>");
  return text;
}

class ScriptingPage : public ::testing::Test {
 protected:
  ScriptingPage() {
    std::ifstream file(SCRIPTING_PAGE, std::ios::binary);
    page.assign(std::istreambuf_iterator<char>(file), {});
    ::setenv("PATH", (BUILD_FOLDER ":" + path).c_str(), 1);
  }
  ~ScriptingPage() override { ::setenv("PATH", path.c_str(), 1); }

  /// The first cells, in backquotes, of the rows of the tables under a heading.
  std::set<std::string> rows(const std::string& heading) const {
    std::set<std::string> result;
    const std::size_t begin = page.find("\n## " + heading + "\n") + 4;
    const std::string section = page.substr(begin, page.find("\n## ", begin) - begin);
    const std::regex row("\n\\| `([^`]+)` \\|");
    for (std::sregex_iterator at(section.begin(), section.end(), row), end; at != end; ++at)
      result.insert((*at)[1]);
    return result;
  }

  const std::string path = std::getenv("PATH");
  const support::ThrowawayHome home;
  std::string page;
};

TEST_F(ScriptingPage, ShowsWhatTheProgramAnswers) {
  std::size_t commands = 0;
  const std::regex block("```console\n([^]*?)```");
  for (std::sregex_iterator at(page.begin(), page.end(), block), end; at != end; ++at) {
    std::string rest = (*at)[1];
    while (rest.starts_with("$ ")) {
      const std::size_t line = rest.find('\n');
      const std::size_t next = std::min(rest.find("\n$ ", line), rest.size() - 1) + 1;
      const std::string command = rest.substr(2, line - 2);
      EXPECT_EQ(answer(command), rest.substr(line + 1, next - line - 1)) << command;
      rest.erase(0, next);
      ++commands;
    }
    EXPECT_EQ(rest, "");
  }
  EXPECT_GE(commands, 15U);
}

TEST_F(ScriptingPage, NamesEveryFieldAndEveryErrorCode) {
  std::set<std::string> fields;
  answer("tavicli create Mars");
  for (const char* command : {"search Mars --fields all,content", "search-in -t Mars -s Mars",
                              "tags list", "pin list", "attachments list -t Mars"}) {
    std::string header = answer("tavicli " + std::string(command) + " --format csv | head -1");
    for (std::size_t comma; !header.empty(); header.erase(0, comma + 1))
      fields.insert(header.substr(0, comma = header.find_first_of(",\n")));
  }
  EXPECT_EQ(rows("Fields"), fields);

  std::set<std::string> codes{"internal", "usage"};
  using Error = NoteStoreError;
  for (const Error& error :
       {Error::noteNotFound(""), Error::noNoteWithTitle(""), Error::titleMatchesMultiple("", 2),
        Error::stringNotFound(""), Error::stringMatchesMultiple("", 2),
        Error::attachmentNotFound(""), Error::noteIsLocked(""), Error::tagNotFound(""),
        Error::tagsNotFound({}), Error::fileNotFound(""), Error::storeUnavailable(""),
        Error::renameTargetExists("", 1), Error::attachmentRemovalGateFailed({}, {}),
        Error::hashMismatch(), Error::concurrentModification(), Error::appLockEnabled()})
    codes.emplace(error.code());
  EXPECT_EQ(rows("Error codes"), codes);
}

}  // namespace
}  // namespace tavi::manual
