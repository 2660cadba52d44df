#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/throwaway_home.h"

namespace tavi {
namespace {

/// Runs the built program from a shell, as `$tavicli`, in a temporary home.
class Program : public ::testing::Test {
 protected:
  Program() { ::setenv("tavicli", TAVI_PROGRAM, 1); }

  /// The output of a script, including errors, and its exit code.
  static std::string shell(const std::string& script) {
    std::FILE* pipe = ::popen(("exec 2>&1; " + script).c_str(), "r");
    std::string output;
    for (int byte; (byte = std::fgetc(pipe)) != EOF;) output += static_cast<char>(byte);
    const int status = ::pclose(pipe);
    return output + "exit " + std::to_string(WEXITSTATUS(status)) + "\n";
  }

  support::ThrowawayHome home;
};

TEST_F(Program, ConnectsTheWires) {
  EXPECT_EQ(shell("$tavicli create Mars --content 'a #red planet' --fields title,tags"),
            "Mars\t#red\nexit 0\n");
  EXPECT_EQ(shell("printf 'and dust' | $tavicli append --title mars;"
                  "$tavicli search-in -t Mars -s DUST --context 0 --fields snippet"),
            "dust\nexit 0\n");
  EXPECT_EQ(shell("$tavicli edit -t Mars --find A --replace the"),
            "Error: String not found in note " +
                shell("$tavicli show -t Mars --fields id").substr(0, 36) +
                " (try --ignore-case)\nexit 1\n");
  EXPECT_EQ(shell("head -c 100000 /dev/zero | $tavicli attachments add -t Mars -f zero.bin &&"
                  "$tavicli attachments save -t Mars -f zero.bin | cmp -n 100000 - /dev/zero &&"
                  "$tavicli attachments list -t Mars"),
            "zero.bin\t100000\nexit 0\n");
  EXPECT_EQ(
      shell("$tavicli show --format=json"),
      "{\"error\":{\"code\":\"usage\",\"message\":\"Note ID or title is required\"}}\nexit 64\n");
}

TEST_F(Program, EndsQuietlyWhenNobodyReadsOn) {
  EXPECT_EQ(
      shell("{ sleep 0.1; $tavicli create Mars; echo $? >&2; } | true; $tavicli list --count"),
      "0\n1\nexit 0\n");
  EXPECT_EQ(shell("{ sleep 0.1; $tavicli help all; echo $? >&2; } | true"), "0\nexit 0\n");
}

TEST_F(Program, SaysThatOutputWasLost) {
  const std::string lost = "Error: Could not write the output: ";
  EXPECT_EQ(shell("$tavicli help > /dev/full"), lost + "No space left on device\nexit 1\n");
  EXPECT_EQ(shell("$tavicli list --format json > /dev/full"),
            lost + "No space left on device\nexit 1\n");
  EXPECT_EQ(shell("$tavicli create Mars >&-"), lost + "Bad file descriptor\nexit 1\n");
  EXPECT_EQ(shell("$tavicli cat nosuch <&- >&- 2>&-; $tavicli list --fields title"),
            "Mars\nexit 0\n");
}

TEST_F(Program, DoesNotWaitForTyping) {
  const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_EQ(::grantpt(terminal) | ::unlockpt(terminal), 0);
  const std::string input = std::string(" < ") + ::ptsname(terminal);
  EXPECT_EQ(shell("timeout 10 $tavicli create" + input),
            "Error: Provide a title, content, or both\nexit 64\n");
  EXPECT_EQ(shell("timeout 10 $tavicli create Mars --fields content" + input), "# Mars\nexit 0\n");
  EXPECT_EQ(shell("timeout 10 $tavicli append -t Mars" + input), "exit 0\n");
  EXPECT_EQ(shell("timeout 10 $tavicli attachments add -t Mars -f x" + input),
            "Error: Pipe data via stdin: cat <file> | tavicli attachments add <id> --filename "
            "<name>\nexit 64\n");
  EXPECT_EQ(shell("$tavicli cat -t Mars"), "# Marsexit 0\n");
  EXPECT_EQ(shell("timeout 10 $tavicli overwrite -t Mars" + input), "exit 0\n");
  EXPECT_EQ(shell("$tavicli list --fields length"), "0\nexit 0\n");
  ::close(terminal);
}

TEST_F(Program, TakesAllOfItsInputOrNothing) {
  shell("$tavicli create Mars --content red");
  const std::string nothing = "# Mars\n\nredexit 0\n";
  for (const char* input : {"< /dev/null", "<&-", "0> /dev/null", "< <(printf '\\377')"}) {
    EXPECT_EQ(shell(std::string("bash -c \"$tavicli append -t Mars ") + input + "\""), "exit 0\n")
        << input;
    EXPECT_EQ(shell("$tavicli cat -t Mars"), nothing) << input;
  }
  // Input that cannot be read to its end is refused.
  EXPECT_EQ(shell("$tavicli overwrite -t Mars < /"),
            "Error: Could not read the standard input: Is a directory\nexit 1\n");
  EXPECT_EQ(shell("$tavicli cat -t Mars"), nothing);
  EXPECT_EQ(shell("head -c 3000000 /dev/zero | tr '\\0' x > $HOME/large;"
                  "$tavicli create < $HOME/large --fields length;"
                  "cat $HOME/large | $tavicli create --fields length"),
            "3000000\n3000000\nexit 0\n");
}

}  // namespace
}  // namespace tavi
