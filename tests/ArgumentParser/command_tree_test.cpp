#include "ArgumentParser/command_tree.h"

#include <gtest/gtest.h>

#include "shelf.h"

namespace ArgumentParser {
namespace {

struct ReadURLCommand : ParsableCommand {};

struct OwnParent : ParsableCommand {
  static CommandConfiguration configuration() {
    return {.commandName = "own", .subcommands = {commandType<OwnParent>()}};
  }
};

struct Twice : ParsableCommand {
  static CommandConfiguration configuration() {
    return {.commandName = "twice", .aliases = {"two", "twice"}};
  }
};

template <class Child>
struct Above : ParsableCommand {
  static CommandConfiguration configuration() {
    return {.commandName = "above", .subcommands = {commandType<Child>()}};
  }
};

TEST(CommandTree, NamesACommandAfterItsTypeUnlessTold) {
  EXPECT_EQ(commandType<ReadURLCommand>().configuration().commandName, "read-url-command");
  EXPECT_EQ(commandType<shelf::List>().configuration().commandName, "list");
}

TEST(CommandTree, RefusesATreeThatContradictsItself) {
  EXPECT_DEATH(parseAsRoot(commandType<Above<OwnParent>>(), {}),
               "The command \"own\" can't have itself as its own subcommand\\.");
  EXPECT_DEATH(parseAsRoot(commandType<Above<Twice>>(), {}),
               "The command \"twice\" can't have an alias with the same name as the command "
               "itself\\.");
}

TEST(CommandTree, FindsCommandsByNameAndByType) {
  const CommandType root = commandType<shelf::Shelf>();
  ASSERT_TRUE(subcommand(root, "ls"));
  EXPECT_EQ(*subcommand(root, "ls"), commandType<shelf::List>());
  EXPECT_FALSE(subcommand(root, "help"));
  EXPECT_FALSE(subcommand(root, ""));
  EXPECT_EQ(commandPath(stackTo(root, typeid(shelf::AddTags))), "shelf tags add");
}

}  // namespace
}  // namespace ArgumentParser
