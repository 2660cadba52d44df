#include "ArgumentParser/option_values.h"

#include <algorithm>

#include "ArgumentParser/characters.h"
#include "ArgumentParser/command_tree.h"

namespace ArgumentParser {

namespace {

/// The commands that a line names before their arguments, and their declared arguments.
class NamedCommands {
 public:
  NamedCommands(const CommandType& root, const std::vector<std::string>& tokens) {
    enter(root);
    for (const std::string& token : tokens)
      if (!enterChild(token) && !isFlag(token)) break;
    while (const auto next = stack_.back().configuration().defaultSubcommand) enter(*next);
  }

  /// Whether the token ends with an option that takes the next token unconditionally: "--find",
  /// "-f", or the last letter of a group.
  bool takesNextToken(const std::string& token) const {
    if (!token.starts_with('-')) return false;
    const Name whole = Name::parse(token);
    if (const ArgumentDefinition* definition = find(whole)) return takesAnything(definition);
    if (whole.kind != Name::Kind::longWithSingleDash) return false;
    const ArgumentDefinition* last = nullptr;
    for (const std::string_view letter : characters(whole.text)) {
      last = find({Name::Kind::shortName, std::string(letter)});
      if (!last) return false;
    }
    return takesAnything(last);
  }

 private:
  static bool takesAnything(const ArgumentDefinition* definition) {
    return definition && definition->parsingStrategy == ParsingStrategy::unconditional;
  }

  void enter(const CommandType& command) {
    stack_.push_back(command);
    declared_.emplace_back(command);
  }

  bool enterChild(std::string_view name) {
    for (const CommandType& child : children(stack_))
      if (child.configuration().answersTo(name)) {
        enter(child);
        return true;
      }
    return false;
  }

  bool isFlag(const std::string& token) const {
    const ArgumentDefinition* definition =
        token.starts_with('-') ? find(Name::parse(token)) : nullptr;
    return definition && definition->isFlag();
  }

  const ArgumentDefinition* find(const Name& name) const {
    for (const DeclaredCommand& command : declared_)
      if (const ArgumentDefinition* definition = command.arguments.find(name)) return definition;
    return nullptr;
  }

  CommandStack stack_;
  std::vector<DeclaredCommand> declared_;
};

}  // namespace

std::vector<bool> unconditionalValues(const CommandType& root,
                                      const std::vector<std::string>& tokens) {
  std::vector<bool> isValue(tokens.size());
  const NamedCommands commands(root, tokens);
  for (std::size_t i = 0; i + 1 < tokens.size() && tokens[i] != "--"; ++i)
    if (commands.takesNextToken(tokens[i])) isValue[++i] = true;
  return isValue;
}

}  // namespace ArgumentParser
