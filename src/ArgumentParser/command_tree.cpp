#include "ArgumentParser/command_tree.h"

#include <cstdio>
#include <cstdlib>

#include "ArgumentParser/help_command.h"

namespace ArgumentParser {

namespace {

[[noreturn]] void fail(const std::string& message) {
  std::fprintf(stderr, "%s\n", message.c_str());
  std::abort();
}

/// Extends the stack to the first command of this type; false, with the stack as it was, if there
/// is none below it.
bool extendTo(CommandStack& stack, std::type_index type) {
  if (std::type_index(stack.back().type()) == type) return true;
  for (const CommandType& child : stack.back().configuration().subcommands) {
    stack.push_back(child);
    if (extendTo(stack, type)) return true;
    stack.pop_back();
  }
  return false;
}

}  // namespace

void checkTree(const CommandType& root) {
  const CommandConfiguration configuration = root.configuration();
  for (const std::string& alias : configuration.aliases)
    if (alias == configuration.commandName)
      fail("The command \"" + configuration.commandName +
           "\" can't have an alias with the same name as the command itself.");
  for (const CommandType& child : configuration.subcommands) {
    if (child == root)
      fail("The command \"" + configuration.commandName +
           "\" can't have itself as its own subcommand.");
    checkTree(child);
  }
}

std::optional<CommandType> subcommand(const CommandType& command, std::string_view name) {
  for (const CommandType& child : command.configuration().subcommands)
    if (child.configuration().answersTo(name)) return child;
  return {};
}

CommandStack stackTo(const CommandType& root, std::type_index type) {
  CommandStack stack{root};
  extendTo(stack, type);
  return stack;
}

std::string commandPath(const CommandStack& stack) {
  std::string path;
  for (const CommandType& command : stack) {
    if (!path.empty()) path += ' ';
    path += command.configuration().commandName;
  }
  return path;
}

Names helpNames(const CommandStack& stack) {
  for (auto command = stack.rbegin(); command != stack.rend(); ++command)
    if (const CommandConfiguration configuration = command->configuration();
        configuration.helpNames)
      return *configuration.helpNames;
  return {"-h", "--help"};
}

std::vector<CommandType> children(const CommandStack& stack) {
  std::vector<CommandType> result = stack.back().configuration().subcommands;
  if (stack.size() == 1) result.push_back(commandType<HelpCommand>());
  return result;
}

std::vector<ArgumentDefinition> builtInFlags(const CommandStack& stack) {
  std::vector<ArgumentDefinition> flags;
  const auto add = [&flags](Names names, std::string_view abstract) {
    if (names.empty()) return;
    ArgumentDefinition& flag = flags.emplace_back();
    flag.kind = ArgumentDefinition::Kind::flag;
    flag.names = std::move(names);
    flag.abstract = abstract;
  };
  if (!version(stack).empty()) add("--version", "Show the version.");
  add(helpNames(stack), "Show help information.");
  return flags;
}

std::string version(const CommandStack& stack) {
  for (auto command = stack.rbegin(); command != stack.rend(); ++command)
    if (std::string text = command->configuration().version; !text.empty()) return text;
  return {};
}

DeclaredCommand::DeclaredCommand(std::unique_ptr<ParsableCommand> made) : command(std::move(made)) {
  command->declare(arguments);
}

void DeclaredCommand::validate() {
  for (ParsableArguments* group : arguments.groups()) group->validate();
  command->validate();
}

}  // namespace ArgumentParser
