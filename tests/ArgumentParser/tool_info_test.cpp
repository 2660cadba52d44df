#include "ArgumentParser/tool_info.h"

#include <gtest/gtest.h>

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

TEST(ToolInfo, DescribesACommandWithAllBelowIt) {
  try {
    parseAsRoot(commandType<Bells>(), {"ring", "x", "--experimental-dump-help"});
    FAIL();
  } catch (...) {
    EXPECT_EQ(exitCode(commandType<Bells>(), std::current_exception()), 0);
    EXPECT_EQ(message(commandType<Bells>(), std::current_exception()), R"({
  "command": {
    "abstract": "Ring the \"bell\"\n\u0009now.",
    "aliases": [
      "r"
    ],
    "arguments": [
      {
        "completionKind": {
          "custom": {}
        },
        "isOptional": false,
        "isRepeating": false,
        "kind": "positional",
        "parsingStrategy": "default",
        "shouldDisplay": true,
        "valueName": "bell"
      },
      {
        "abstract": "Light.",
        "allValues": [
          "red",
          "blue"
        ],
        "completionKind": {
          "list": {
            "values": [
              "red",
              "blue"
            ]
          }
        },
        "isOptional": true,
        "isRepeating": true,
        "kind": "option",
        "names": [
          {
            "kind": "short",
            "name": "c"
          },
          {
            "kind": "long",
            "name": "color"
          }
        ],
        "parsingStrategy": "unconditional",
        "preferredName": {
          "kind": "long",
          "name": "color"
        },
        "shouldDisplay": true,
        "valueName": "color"
      },
      {
        "abstract": "Show help information.",
        "isOptional": true,
        "isRepeating": false,
        "kind": "flag",
        "names": [
          {
            "kind": "short",
            "name": "h"
          },
          {
            "kind": "long",
            "name": "help"
          }
        ],
        "parsingStrategy": "default",
        "preferredName": {
          "kind": "long",
          "name": "help"
        },
        "shouldDisplay": true
      }
    ],
    "commandName": "ring",
    "shouldDisplay": true,
    "superCommands": [
      "bells"
    ]
  },
  "serializationVersion": 0
})");
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
