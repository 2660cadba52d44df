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

const CandidateFunction* candidateFunction(const ArgumentSet& arguments,
                                           std::string_view identifier) {
  for (const ArgumentDefinition& definition : arguments.definitions())
    if (completionIdentifier(arguments, definition) == identifier)
      if (const auto* custom = std::get_if<CompletionCustom>(&definition.completion))
        return &custom->candidates;
  return nullptr;
}

std::string candidateLines(const CandidateFunction& candidates, const CompletionRequest& request) {
  std::string lines;
  try {
    for (const std::string& candidate : candidates(request)) {
      if (candidate.find('\n') != candidate.npos) continue;  // cannot be told from two
      if (!lines.empty()) lines += '\n';
      lines += candidate;
    }
  } catch (...) {
    return {};  // a half-typed line is no place for errors
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
  const DeclaredCommand declared(command);
  const CandidateFunction* candidates = candidateFunction(declared.arguments, *++word);
  if (!candidates) throw ParserError(InvalidState{});
  return candidateLines(*candidates, {.words = {word + 1, tokens.end()},
                                      .shell = environment("SAP_SHELL"),
                                      .shellVersion = environment("SAP_SHELL_VERSION")});
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
