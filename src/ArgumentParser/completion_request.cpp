#include "ArgumentParser/completion_request.h"

#include <algorithm>
#include <cstdlib>

#include "ArgumentParser/command_tree.h"
#include "ArgumentParser/parser_error.h"

namespace ArgumentParser {

namespace {

std::string environment(const char* variable) {
  const char* value = std::getenv(variable);
  return value ? value : "";
}

/// The index of the argument that a request asks about.
std::size_t argumentNamed(std::string_view identifier, const ArgumentSet& arguments) {
  const std::vector<ArgumentDefinition>& definitions = arguments.definitions();
  for (std::size_t i = 0; i < definitions.size(); ++i)
    if (completionIdentifier(arguments, definitions[i]) == identifier)
      if (std::holds_alternative<CompletionCustom>(definitions[i].completion)) return i;
  throw ParserError(InvalidState{});
}

/// A command of the type with the values from the words before the cursor, or with its initial
/// values if those words are not a valid line.
std::unique_ptr<ParsableCommand> commandAsTyped(const CommandType& root, const CommandType& type,
                                                const ArgumentDefinition& argument,
                                                const std::vector<std::string>& words) {
  if (words.size() < 2) return type.make();
  std::vector<std::string> line(words.begin() + 1, words.end() - 1);
  // The option before the cursor has no value yet: it is the one that is being typed.
  if (!line.empty() && std::ranges::count(argument.names, line.back(), &Name::written) > 0)
    line.pop_back();
  try {
    auto command = parseAsRoot(root, line);
    const ParsableCommand& reached = *command;
    if (typeid(reached) == type.type()) return command;
  } catch (...) {  // an unfinished line is often invalid
  }
  return type.make();
}

/// The part of the word that belongs to the argument's value: without "--name=".
std::string_view typedValue(std::string_view word, const ArgumentDefinition& argument) {
  for (const Name& name : argument.names)
    if (const std::string start = name.written() + "="; word.starts_with(start))
      return word.substr(start.size());
  return word;
}

/// Whether the parser accepts any text as the value at the cursor, even one such as "-x".
bool takesAnything(const ArgumentDefinition& argument, const std::vector<std::string>& words) {
  if (argument.isPositional()) return std::ranges::count(words, "--") > 0;
  return argument.parsingStrategy == ParsingStrategy::unconditional ||
         (!words.empty() && typedValue(words.back(), argument).size() < words.back().size());
}

std::string candidateLines(const ArgumentDefinition& argument, const CompletionRequest& request) {
  const auto& candidates = std::get<CompletionCustom>(argument.completion).candidates;
  const bool anything = takesAnything(argument, request.words);
  std::string lines;
  try {
    for (const std::string& candidate : candidates(request)) {
      if (candidate.find('\n') != candidate.npos) continue;  // would read as two candidates
      if (!anything && candidate.size() > 1 && candidate.front() == '-') continue;
      if (!lines.empty()) lines += '\n';
      lines += candidate;
    }
  } catch (...) {
    return {};  // errors must not show up while the user is typing
  }
  return lines;
}

}  // namespace

bool isCompletionRequest(const std::vector<std::string>& tokens) {
  return !tokens.empty() && tokens.front() == "---completion";
}

std::string completionAnswer(const CommandType& root, const std::vector<std::string>& tokens) {
  CommandType command = root;
  auto word = tokens.begin() + 1;
  for (; word != tokens.end() && *word != "--"; ++word) {
    const auto child = subcommand(command, *word);
    if (!child) throw ParserError(InvalidState{});
    command = *child;
  }
  if (tokens.end() - word < 2) throw ParserError(InvalidState{});
  const DeclaredCommand untouched(command);
  const std::size_t index = argumentNamed(*++word, untouched.arguments);
  const ArgumentDefinition& argument = untouched.arguments.definitions()[index];

  CompletionRequest request{.words = {word + 1, tokens.end()},
                            .shell = environment("SAP_SHELL"),
                            .shellVersion = environment("SAP_SHELL_VERSION")};
  if (!request.words.empty()) request.value = typedValue(request.words.back(), argument);
  const DeclaredCommand typed(commandAsTyped(root, command, argument, request.words));
  return candidateLines(typed.arguments.definitions()[index], request);
}

std::string completionIdentifier(const ArgumentSet& arguments,
                                 const ArgumentDefinition& definition) {
  if (!definition.isPositional()) return definition.names.preferred()->written();
  std::size_t index = 0;
  for (const ArgumentDefinition& other : arguments.definitions()) {
    if (&other == &definition) break;
    if (other.isPositional()) ++index;
  }
  return "positional@" + std::to_string(index);
}

}  // namespace ArgumentParser
