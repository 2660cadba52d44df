#include <gtest/gtest.h>

#include "shelf.h"

namespace ArgumentParser {
namespace {

using Line = std::vector<std::string>;

struct Answer {
  std::string text;
  int exitCode;
  bool operator==(const Answer&) const = default;
};

Answer answer(const Line& line) {
  const CommandType root = commandType<shelf::Shelf>();
  try {
    parseAsRoot(root, line);
  } catch (...) {
    const auto error = std::current_exception();
    const int code = exitCode(root, error);
    return {code == 0 ? message(root, error) : "", code};
  }
  return {"a command", 0};
}

TEST(CompletionRequest, IsAnsweredByTheArgumentsOwnFunction) {
  setenv("SAP_SHELL", "zsh", 1);
  unsetenv("SAP_SHELL_VERSION");
  EXPECT_EQ(
      answer({"---completion", "edit", "--", "--find", "shelf", "edit", "--help", "--find", ""}),
      (Answer{"words|shelf|edit|--help|--find|\nshell zsh\nno version", 0}));
  EXPECT_EQ(answer({"---completion", "edit", "--", "positional@0", "shelf", "edit", "nothing"}),
            (Answer{"", 0}));
  EXPECT_EQ(answer({"---completion", "edit", "--", "positional@0"}).text.substr(0, 13),
            "War and Peace");
}

TEST(CompletionRequest, FillsInTheValuesInFrontOfTheCursor) {
  const auto replacements = [](Line words) {
    Line request{"---completion", "edit", "--", "--replace", "shelf"};
    request.insert(request.end(), words.begin(), words.end());
    return answer(request).text;
  };
  EXPECT_EQ(replacements({"edit", "7", "-t", "x", "--find", "a", "--replace", ""}),
            "7\nx\ntyped \na");
  EXPECT_EQ(replacements({"-v", "edit", "--replace", "--find", "7", "--replace=b"}),
            "7\nno title\ntyped b");
  EXPECT_EQ(replacements({"edit", "--bogus", "7", "--replace", "b"}), "no book\nno title\ntyped b");
  EXPECT_EQ(replacements({"list", "--replace", "b"}), "no book\nno title\ntyped b");
}

TEST(CompletionRequest, OffersWhatLooksLikeAnOptionWhereItIsAValue) {
  const auto offersDash = [](const std::string& argument, Line words) {
    Line request{"---completion", "edit", "--", argument, "shelf", "edit"};
    request.insert(request.end(), words.begin(), words.end());
    return answer(request).text.find("-dash") != std::string::npos;
  };
  EXPECT_FALSE(offersDash("--title", {"--title", ""}));
  EXPECT_TRUE(offersDash("--title", {"--title="}));
  EXPECT_FALSE(offersDash("positional@0", {""}));
  EXPECT_TRUE(offersDash("positional@0", {"--", ""}));
}

TEST(CompletionRequest, ForWhatTheTreeDoesNotHoldFails) {
  for (const Line& line : {Line{"---completion"},
                           {"---completion", "edit"},
                           {"---completion", "edit", "--"},
                           {"---completion", "nosuch", "--", "--find"},
                           {"---completion", "edit", "--", "--nosuch"},
                           {"---completion", "edit", "--", "--all"},
                           {"---completion", "edit", "--", "positional@1"}})
    EXPECT_EQ(answer(line), (Answer{"", 64})) << line.size();
}

}  // namespace
}  // namespace ArgumentParser
