#include "ArgumentParser/tool_info.h"

#include <gtest/gtest.h>

#include <regex>

#include "shelf.h"

namespace ArgumentParser {
namespace {

struct Ring : ParsableCommand {
  static CommandConfiguration configuration() {
    return {.commandName = "ring", .abstract = "Ring the \"bell\"\n\tnow.", .aliases = {"r"}};
  }
  void declare(ArgumentSet& args) override {
    args.argument(bell, "bell").required().completes([](const CompletionRequest&) {
      return std::vector<std::string>{};
    });
    args.option(colors, {"-c", "--color"}).takesAnything().help("Light.");
  }

  std::string bell;
  std::vector<shelf::Color> colors;
};

struct Bells : ParsableCommand {
  static CommandConfiguration configuration() {
    return {.commandName = "bells",
            .subcommands = {commandType<Ring>()},
            .defaultSubcommand = commandType<Ring>()};
  }
};

std::string withoutIndents(const std::string& text) {
  return std::regex_replace(text, std::regex("\n *"), "");
}

TEST(ToolInfo, DescribesACommandWithAllBelowIt) {
  try {
    parseAsRoot(commandType<Bells>(), {"ring", "x", "--experimental-dump-help"});
    FAIL();
  } catch (...) {
    EXPECT_EQ(exitCode(commandType<Bells>(), std::current_exception()), 0);
    const std::string info = message(commandType<Bells>(), std::current_exception());
    EXPECT_TRUE(info.starts_with(R"({
  "command": {
    "abstract": "Ring the \"bell\"\n\u0009now.",
    "aliases": [
      "r"
    ],)"))
        << info;
    EXPECT_EQ(
        withoutIndents(info),
        R"({"command": {"abstract": "Ring the \"bell\"\n\u0009now.","aliases": ["r"],)"
        R"("arguments": [{"completionKind": {"custom": {}},"isOptional": false,)"
        R"("isRepeating": false,"kind": "positional","parsingStrategy": "default",)"
        R"("shouldDisplay": true,"valueName": "bell"},{"abstract": "Light.","allValues": ["red",)"
        R"("blue"],"completionKind": {"list": {"values": ["red","blue"]}},"isOptional": true,)"
        R"("isRepeating": true,"kind": "option","names": [{"kind": "short","name": "c"},)"
        R"({"kind": "long","name": "color"}],"parsingStrategy": "unconditional",)"
        R"("preferredName": {"kind": "long","name": "color"},"shouldDisplay": true,)"
        R"("valueName": "color"},{"abstract": "Show help information.","isOptional": true,)"
        R"("isRepeating": false,"kind": "flag","names": [{"kind": "short","name": "h"},)"
        R"({"kind": "long","name": "help"}],"parsingStrategy": "default",)"
        R"("preferredName": {"kind": "long","name": "help"},"shouldDisplay": true}],)"
        R"("commandName": "ring","shouldDisplay": true,"superCommands": ["bells"]},)"
        R"("serializationVersion": 0})");
  }
}

TEST(ToolInfo, HoldsTheWholeTree) {
  const std::string whole = dumpHelp({commandType<shelf::Shelf>()});
  for (const char* part : {"\"defaultSubcommand\": \"list\"", "\"commandName\": \"add\"",
                           "\"commandName\": \"help\"", "\"shellCommand\": {", "\"extensions\": [",
                           "\"directory\": {}", "\"defaultValue\": \"tsv\""})
    EXPECT_NE(whole.find(part), whole.npos) << part;
}

}  // namespace
}  // namespace ArgumentParser
