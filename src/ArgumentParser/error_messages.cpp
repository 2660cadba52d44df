#include "ArgumentParser/error_messages.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "ArgumentParser/characters.h"
#include "ArgumentParser/command_tree.h"

namespace ArgumentParser {

namespace {

constexpr std::size_t kFarthestSuggestion = 3;  // in edits, see editDistance

/// The long option name of the command that is closest to an unknown one, with its dashes; empty if
/// none is close enough. Among equally close names the one declared first wins.
std::string nearestName(const Name& unknown, const ArgumentSet& arguments) {
  if (unknown.kind == Name::Kind::shortName) return {};
  std::string nearest;
  std::size_t leastDistance = kFarthestSuggestion + 1;
  for (const ArgumentDefinition& definition : arguments.definitions())
    for (const Name& name : definition.names) {
      if (name.kind == Name::Kind::shortName) continue;
      const std::size_t distance = editDistance(name.written(), unknown.written());
      if (distance >= leastDistance) continue;
      leastDistance = distance;
      nearest = name.written();
    }
  return nearest;
}

/// "'a', 'b'".
std::string quotedList(const std::vector<std::string>& texts, std::string_view separator = ", ") {
  std::vector<std::string> each;
  for (const std::string& text : texts) each.push_back("'" + text + "'");
  return fmt::format("{}", fmt::join(each, separator));
}

/// ". Please provide one of 'a', 'b' or 'c'.", including the leading full stop; empty without
/// values.
std::string choiceAmong(const std::vector<std::string>& values) {
  if (values.empty()) return {};
  if (values.size() > 5)
    return fmt::format(". Please provide one of the following:\n  - {}",
                       fmt::join(values, "\n  - "));
  if (values.size() <= 2)
    return fmt::format(". Please provide one of {}.", quotedList(values, " and "));
  return fmt::format(". Please provide one of {} or '{}'.",
                     quotedList({values.begin(), values.end() - 1}), values.back());
}

std::string shown(const Name& name) {
  return withoutControls(name.written());
}

/// "--limit <limit>", with the option's name as typed; "<limit>" for a positional.
std::string named(const std::optional<Name>& name, const ArgumentDefinition* definition) {
  std::string text = name ? shown(*name) : "";
  if (!definition || definition->valueName.empty()) return text;
  if (!text.empty()) text += ' ';
  return text + "<" + definition->valueName + ">";
}

std::string helpLine(const std::string& form, const ArgumentDefinition* definition) {
  if (!definition || definition->abstract.empty()) return {};
  return form + "  " + definition->abstract;
}

class ErrorDescriber {
 public:
  explicit ErrorDescriber(const CommandStack& stack) : declared_(stack.back()) {}

  ErrorText operator()(const UnknownOption& error) const {
    const std::string nearest = nearestName(error.name, declared_.arguments);
    const std::string hint = nearest.empty() ? "" : fmt::format(". Did you mean '{}'?", nearest);
    return {fmt::format("Unknown option '{}'{}", shown(error.name), hint), {}};
  }
  ErrorText operator()(const InvalidOption& error) const {
    return {"Invalid option: " + withoutControls(error.text), {}};
  }
  ErrorText operator()(const NonAlphanumericShortOption& error) const {
    return {"Invalid option: -" + withoutControls(error.character), {}};
  }
  ErrorText operator()(const MissingValueForOption& error) const {
    const ArgumentDefinition* definition = declared_.arguments.find(error.name);
    const std::string form = named(error.name, definition);
    return {fmt::format("Missing value for '{}'", form), helpLine(form, definition)};
  }
  ErrorText operator()(const MissingValueOrUnknownCompositeOption& error) const {
    return {fmt::format("{}\n   or: {} in '{}'", (*this)(UnknownOption{error.composite}).message,
                        (*this)(MissingValueForOption{error.shortName}).message,
                        shown(error.composite)),
            {}};
  }
  ErrorText operator()(const UnexpectedValueForOption& error) const {
    return {fmt::format("The option '{}' does not take any value, but '{}' was specified.",
                        shown(error.name), withoutControls(error.value)),
            {}};
  }
  ErrorText operator()(const UnexpectedExtraValues& error) const {
    std::vector<std::string> shownValues;
    for (const std::string& value : error.values) shownValues.push_back(withoutControls(value));
    const std::string values = quotedList(shownValues);
    if (error.values.size() == 1) return {"Unexpected argument " + values, {}};
    return {fmt::format("{} unexpected arguments: {}", error.values.size(), values), {}};
  }
  ErrorText operator()(const NoValue& error) const {
    const ArgumentDefinition& definition = this->definition(error.definition);
    const std::string synopsis = definition.synopsis();
    return {fmt::format("Missing expected argument '{}'", synopsis),
            helpLine(synopsis, &definition)};
  }
  ErrorText operator()(const UnableToParseValue& error) const {
    const ArgumentDefinition& definition = this->definition(error.definition);
    const std::string form = named(error.name, &definition);
    const std::string tail = error.reason ? ": " + withoutControls(*error.reason)
                                          : choiceAmong(definition.allValueStrings);
    return {fmt::format("The value '{}' is invalid for '{}'{}", withoutControls(error.value), form,
                        tail),
            helpLine(form, &definition)};
  }
  ErrorText operator()(const UnsupportedShell& error) const {
    const std::string fault = error.name
                                  ? fmt::format("Can't generate completion scripts for '{}'.",
                                                withoutControls(*error.name))
                                  : "Can't autodetect a supported shell.";
    return {fmt::format("{}\nPlease use --generate-completion-script=<shell> with one of:\n    {}",
                        fault, fmt::join(completionShellNames, " ")),
            {}};
  }
  ErrorText operator()(const NoArguments& error) const {
    try {
      std::rethrow_exception(error.error);
    } catch (const CommandError& inner) {
      return errorText(inner.error(), inner.stack());
    }
  }
  ErrorText operator()(const MissingSubcommand&) const {
    return {"Missing required subcommand.", {}};
  }
  ErrorText operator()(const NotImplemented&) const {
    return {"Internal error. Parsing command-line arguments hit unimplemented code path.", {}};
  }
  /// InvalidState, and the requests, which never get here.
  template <class Case>
  ErrorText operator()(const Case&) const {
    return {"Internal error. Invalid state while parsing command-line arguments.", {}};
  }

 private:
  const ArgumentDefinition& definition(std::size_t index) const {
    return declared_.arguments.definitions()[index];
  }

  DeclaredCommand declared_;
};

}  // namespace

ErrorText errorText(const ParserError& error, const CommandStack& stack) {
  return std::visit(ErrorDescriber(stack), error);
}

}  // namespace ArgumentParser
