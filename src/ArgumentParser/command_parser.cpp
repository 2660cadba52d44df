#include "ArgumentParser/command_parser.h"

#include <algorithm>
#include <cstdlib>

#include "ArgumentParser/completion_request.h"
#include "ArgumentParser/help_command.h"
#include "ArgumentParser/level_parser.h"
#include "ArgumentParser/option_values.h"
#include "ArgumentParser/parser_error.h"

namespace ArgumentParser {

namespace {

using Element = SplitArguments::Element;
using Kind = Element::Kind;

bool isOption(const Element& element, const Name& name) {
  return element.kind == Kind::option && element.name == name;
}

/// Whether every letter of a group such as "-abh" has been used or is one of the flags. "-math" is
/// not a request for help because it contains an "h".
bool isGroupOfKnownLetters(std::span<const Element> group, const Names& flags) {
  return std::ranges::all_of(group.subspan(1), [&flags](const Element& letter) {
    return letter.isUsed || std::ranges::count(flags, letter.name) > 0;
  });
}

/// Whether the unused elements of the line include one of the flags.
bool isLeft(SplitArguments& line, const Names& flags) {
  for (const Element* element : line.unused())
    for (const Name& flag : flags) {
      if (!isOption(*element, flag)) continue;
      if (!isGroupOfKnownLetters(line.elementsAt(element->position), flags)) continue;
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

/// Looks for the flag before any command is parsed.
void checkForCompletionScript(SplitArguments& line) {
  const Name flag{Name::Kind::longName, "generate-completion-script"};
  for (const Element& element : line.elements()) {
    if (!isOption(element, flag)) continue;
    if (element.value) throw ParserError(CompletionScriptRequested{shellNamed(*element.value)});
    const std::size_t next = element.position + 1;
    const bool isNamed = line.hasToken(next) && line.elementsAt(next).front().kind == Kind::value;
    throw ParserError(
        CompletionScriptRequested{isNamed ? shellNamed(line.token(next)) : shellOfEnvironment()});
  }
}

/// The error for an option with this unused element. It names a group of letters as a whole, unless
/// only punctuation is left of the group.
ParserError unknown(const Element& element, SplitArguments& line) {
  const auto group = line.elementsAt(element.position);
  const Element& whole = group.front();
  const bool isSign = whole.isUsed && std::ranges::all_of(group, [](const Element& letter) {
                        return letter.isUsed || !isShortName(letter.name.text);
                      });
  if (isSign) return NonAlphanumericShortOption{element.name.text, true};
  return UnknownOption{whole.name};
}

/// The error for a line with unused elements: the first unknown option, else all extra values.
ParserError leftOver(SplitArguments& line) {
  UnexpectedExtraValues extra;
  for (const Element* element : line.unused()) {
    if (element->kind == Kind::option) return unknown(*element, line);
    extra.values.push_back(line.token(element->position));
  }
  return extra;
}

}  // namespace

std::unique_ptr<ParsableCommand> CommandParser::parse() {
  checkTree(stack_.front());
  try {
    if (isCompletionRequest(tokens_))
      throw ParserError(CompletionScriptCustomResponse{completionAnswer(stack_.front(), tokens_)});
    SplitArguments line(tokens_, unconditionalValues(stack_.front(), tokens_));
    checkForCompletionScript(line);
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
    checkForBuiltInFlags(line);
    if (!line.unused().empty()) throw leftOver(line);
    if (const auto* help = dynamic_cast<const HelpCommand*>(command.get()))
      showHelp(help->subcommands);
    return command;
  }
}

std::unique_ptr<ParsableCommand> CommandParser::parseCurrent(SplitArguments& line) const {
  DeclaredCommand current(stack_.back());
  if (const auto missing = parseLevel(current.arguments, helpNames(stack_), line)) {
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

void CommandParser::checkForBuiltInFlags(SplitArguments& line) const {
  if (line.unused().empty()) return;
  if (asksForHelp(line)) throw ParserError(HelpRequested{});
  if (isLeft(line, "--experimental-dump-help")) throw ParserError(DumpHelpRequested{});
  if (!version(stack_).empty() && isLeft(line, "--version")) throw ParserError(VersionRequested{});
}

bool CommandParser::asksForHelp(SplitArguments& line) const {
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
