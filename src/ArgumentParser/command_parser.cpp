#include "ArgumentParser/command_parser.h"

#include <algorithm>
#include <cstdlib>

#include "ArgumentParser/completion_request.h"
#include "ArgumentParser/help_command.h"
#include "ArgumentParser/level_parser.h"
#include "ArgumentParser/parser_error.h"

namespace ArgumentParser {

namespace {

using Element = SplitArguments::Element;
using Kind = Element::Kind;

bool isOption(const Element& element, const Name& name) {
  return element.kind == Kind::option && element.name == name;
}

/// Whether one of the flags is among what is left of the line.
bool isLeft(const SplitArguments& line, const Names& flags) {
  for (const Element* element : line.unused())
    for (const Name& flag : flags) {
      if (!isOption(*element, flag)) continue;
      if (!element->value) return true;
      throw ParserError(UnexpectedValueForOption{flag, std::string(*element->value)});
    }
  return false;
}

CompletionShell shellNamed(std::string_view text) {
  if (const auto shell = completionShell(text)) return *shell;
  throw ParserError(UnsupportedShell{std::string(text)});
}

CompletionShell shellOfEnvironment() {
  const char* path = std::getenv("SHELL");
  if (!path) throw ParserError(UnsupportedShell{});
  const std::string_view text = path;
  return shellNamed(text.substr(text.rfind('/') + 1));  // without a "/" from npos + 1, which is 0
}

/// Looks for the flag before anything is parsed. Behind an option, whose value it may prove to be,
/// it counts when it is left over.
void checkForCompletionScript(SplitArguments& line, bool isParsed) {
  const Name flag{Name::Kind::longName, "generate-completion-script"};
  for (const Element& element : line.elements()) {
    if (!isOption(element, flag) || element.isUsed) continue;
    if (!isParsed && line.standsBehindOption(element.position)) continue;
    if (element.value) throw ParserError(CompletionScriptRequested{shellNamed(*element.value)});
    const std::size_t next = element.position + 1;
    const bool isNamed = line.hasToken(next) && line.elementsAt(next).front().kind == Kind::value;
    throw ParserError(
        CompletionScriptRequested{isNamed ? shellNamed(line.token(next)) : shellOfEnvironment()});
  }
}

/// What is wrong with a line of which this is left: the first option, else all the values.
ParserError leftOver(const SplitArguments& line) {
  UnexpectedExtraValues extra;
  for (const Element* element : line.unused()) {
    const std::string& token = line.token(element->position);
    const Name& name = element->name;
    if (element->kind == Kind::value) {
      extra.values.push_back(token);
    } else if (element->kind == Kind::malformed) {
      return malformation(token);
    } else if (name.kind == Name::Kind::shortName && !isShortName(name.text)) {
      return NonAlphanumericShortOption{name.text};
    } else {
      return UnknownOption{name};
    }
  }
  return extra;
}

}  // namespace

std::unique_ptr<ParsableCommand> CommandParser::parse() {
  checkTree(stack_.front());
  try {
    if (isCompletionRequest(tokens_))
      throw ParserError(CompletionScriptCustomResponse{completionAnswer(stack_.front(), tokens_)});
    SplitArguments line(tokens_);
    checkForCompletionScript(line, false);
    return descend(line);
  } catch (ParserError& error) {
    CommandError failure(std::move(error), stack_);
    if (!tokens_.empty() || !std::holds_alternative<NoValue>(failure.error())) throw failure;
    throw CommandError(NoArguments{std::make_exception_ptr(failure)}, stack_);
  }
}

std::unique_ptr<ParsableCommand> CommandParser::descend(SplitArguments& line) {
  for (;;) {
    auto command = parseCurrent(line);
    if (const auto next = nextSubcommand(line)) {
      stack_.push_back(*next);
      continue;
    }
    checkForCompletionScript(line, true);
    checkForBuiltInFlags(line);
    if (!line.unused().empty()) throw leftOver(line);
    if (const auto* help = dynamic_cast<const HelpCommand*>(command.get()))
      showHelp(help->subcommands);
    return command;
  }
}

std::unique_ptr<ParsableCommand> CommandParser::parseCurrent(SplitArguments& line) const {
  DeclaredCommand current(stack_.back());
  if (const auto missing = parseLevel(current.arguments, line)) {
    if (asksForHelp(line)) throw ParserError(HelpRequested{});
    throw ParserError(NoValue{*missing});
  }
  try {
    current.validate();
  } catch (...) {
    if (asksForHelp(line)) throw ParserError(HelpRequested{});
    throw ParserError(UserValidationError{std::current_exception()});
  }
  return std::move(current.command);
}

std::optional<CommandType> CommandParser::nextSubcommand(SplitArguments& line) const {
  const Element* first = line.firstUnused();
  if (first && first->kind == Kind::value) {
    if (const auto child = namedSubcommand(line.token(first->position))) {
      line.useToken(first->position);
      return child;
    }
  }
  if (line.unused().size() == 1 && asksForHelp(line)) throw ParserError(HelpRequested{});
  return stack_.back().configuration().defaultSubcommand;
}

std::optional<CommandType> CommandParser::namedSubcommand(std::string_view name) const {
  for (const CommandType& child : children(stack_))
    if (child.configuration().answersTo(name)) return child;
  return {};
}

void CommandParser::checkForBuiltInFlags(const SplitArguments& line) const {
  if (line.unused().empty()) return;
  if (asksForHelp(line)) throw ParserError(HelpRequested{});
  if (isLeft(line, "--experimental-dump-help")) throw ParserError(DumpHelpRequested{});
  if (!version(stack_).empty() && isLeft(line, "--version")) throw ParserError(VersionRequested{});
}

bool CommandParser::asksForHelp(const SplitArguments& line) const {
  return isLeft(line, helpNames(stack_));
}

void CommandParser::showHelp(const std::vector<std::string>& path) {
  stack_.pop_back();
  for (auto word = path.begin(); word != path.end(); ++word) {
    const auto child = namedSubcommand(*word);
    if (!child) throw ParserError(UnexpectedExtraValues{{word, path.end()}});
    stack_.push_back(*child);
  }
  throw ParserError(HelpRequested{});
}

}  // namespace ArgumentParser
