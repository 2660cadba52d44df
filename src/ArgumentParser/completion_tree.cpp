#include "ArgumentParser/completion_tree.h"

#include <algorithm>

#include "ArgumentParser/command_tree.h"
#include "ArgumentParser/completion_request.h"
#include "ArgumentParser/help_command.h"

namespace ArgumentParser {

namespace {

CompletionCommand completionCommand(const CommandStack& stack) {
  const CommandConfiguration configuration = stack.back().configuration();
  CompletionCommand result;
  for (const CommandType& command : stack)
    result.path.push_back(command.configuration().commandName);
  result.names = configuration.aliases;
  result.names.insert(result.names.begin(), configuration.commandName);
  result.abstract = configuration.abstract;

  const DeclaredCommand declared(stack.back());
  for (const ArgumentDefinition& definition : declared.arguments.definitions())
    result.arguments.push_back({definition, completionIdentifier(declared.arguments, definition)});
  for (const ArgumentDefinition& flag : builtInFlags(stack)) result.arguments.push_back({flag, ""});

  for (const CommandType& child : configuration.subcommands) {
    if (!child.configuration().shouldDisplay) continue;
    if (configuration.isDefault(child)) result.defaultIndex = result.children.size();
    CommandStack below = stack;
    below.push_back(child);
    result.children.push_back(completionCommand(below));
  }
  return result;
}

/// The `help` command; its argument completes to the names of its siblings.
CompletionCommand helpCommand(const CommandType& root, const CompletionCommand& tree) {
  CompletionCommand help = completionCommand({root, commandType<HelpCommand>()});
  CompletionList siblings;
  for (const CompletionCommand& child : tree.children) siblings.values.push_back(child.names[0]);
  help.arguments.front().definition.completion = std::move(siblings);
  return help;
}

bool isLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

}  // namespace

std::vector<std::string> CompletionArgument::names() const {
  std::vector<std::string> result;
  for (const Name& name : definition.names) result.push_back(name.written());
  return result;
}

std::string CompletionCommand::functionName() const {
  std::string name;
  for (const std::string& word : path) {
    name += '_';
    for (const char c : word) name += isLetterOrDigit(c) || c == '-' ? c : '_';
  }
  return name;
}

std::string CompletionCommand::subcommandPath() const {
  return joined({path.begin() + 1, path.end()}, " ");
}

std::vector<const CompletionArgument*> CompletionCommand::positionals() const {
  std::vector<const CompletionArgument*> result;
  for (const CompletionArgument& argument : arguments)
    if (argument.definition.isPositional()) result.push_back(&argument);
  return result;
}

const CompletionCommand* CompletionCommand::defaultChild() const {
  return defaultIndex ? &children[*defaultIndex] : nullptr;
}

std::vector<OwnedArgument> CompletionCommand::options() const {
  std::vector<OwnedArgument> result;
  const auto isNamed = [&result](const Names& others) {
    return std::ranges::any_of(result, [&others](const OwnedArgument& owned) {
      return owned.argument->definition.names == others;
    });
  };
  const auto add = [&](const CompletionCommand& command) {
    for (const CompletionArgument& argument : command.arguments) {
      const ArgumentDefinition& definition = argument.definition;
      if (definition.isPositional() || !definition.isVisible || isNamed(definition.names)) continue;
      result.push_back({&command, &argument});
    }
  };
  add(*this);
  if (const CompletionCommand* child = defaultChild()) add(*child);
  return result;
}

CompletionCommand completionTree(const CommandType& root) {
  CompletionCommand tree = completionCommand({root});
  if (!tree.children.empty()) tree.children.push_back(helpCommand(root, tree));
  return tree;
}

std::string filled(std::string_view pattern,
                   std::initializer_list<std::pair<std::string_view, std::string>> values) {
  std::string result;
  while (!pattern.empty()) {
    const auto mark = pattern.find('@');
    result += pattern.substr(0, mark);
    if (mark == pattern.npos) break;
    pattern.remove_prefix(mark);
    const auto* value = std::find_if(values.begin(), values.end(), [&](const auto& candidate) {
      return pattern.starts_with(candidate.first);
    });
    result += value == values.end() ? pattern.substr(0, 1) : std::string_view(value->second);
    pattern.remove_prefix(value == values.end() ? 1 : value->first.size());
  }
  return result;
}

std::string joined(const std::vector<std::string>& texts, std::string_view separator) {
  std::string result;
  for (const std::string& text : texts) {
    if (&text != &texts.front()) result += separator;
    result += text;
  }
  return result;
}

}  // namespace ArgumentParser
