#include "ArgumentParser/help_generator.h"

#include <algorithm>
#include <utility>

#include "ArgumentParser/characters.h"
#include "ArgumentParser/text_wrapping.h"

namespace ArgumentParser {

namespace {

using HelpElement = HelpGenerator::Element;
using Section = HelpGenerator::Section;

constexpr int kHelpIndent = 2;
constexpr int kLabelColumn = 26;
constexpr int kDiscussionIndent = 8;
constexpr int kUsageIndent = 7;  // the width of "USAGE: " and "Usage: "
constexpr std::size_t kMaximumOfDefinitionsInUsage = 12;

std::string joined(const std::vector<std::string>& texts, std::string_view separator) {
  std::string result;
  for (const std::string& text : texts) {
    if (!result.empty()) result += separator;
    result += text;
  }
  return result;
}

/// "(values: a, b, c; default: b)", either part alone, or empty.
std::string bracketText(const ArgumentDefinition& definition) {
  std::vector<std::string> parts;
  if (!definition.allValueStrings.empty())
    parts.push_back("values: " + joined(definition.allValueStrings, ", "));
  if (!definition.defaultValue.empty()) parts.push_back("default: " + definition.defaultValue);
  return parts.empty() ? std::string() : "(" + joined(parts, "; ") + ")";
}

HelpElement element(const ArgumentDefinition& definition) {
  std::string abstract = definition.abstract;
  if (const std::string bracket = bracketText(definition); !bracket.empty())
    abstract += (abstract.empty() ? "" : " ") + bracket;
  return {definition.label(), std::move(abstract), definition.discussion};
}

HelpElement element(const CommandConfiguration& subcommand, bool isDefault) {
  std::string label = subcommand.commandName;
  for (const std::string& alias : subcommand.aliases) label += ", " + alias;
  if (isDefault) label += " (default)";
  return {std::move(label), subcommand.abstract};
}

std::string rendered(const HelpElement& element, int screenWidth) {
  const std::string label = std::string(kHelpIndent, ' ') + element.label;
  const std::string abstract = wrapped(element.abstract, screenWidth, kLabelColumn);
  const std::size_t labelWidth = characterCount(label);
  std::string result = label;
  if (!abstract.empty()) {
    const bool fits = labelWidth < kLabelColumn && abstract.front() == ' ';
    result += fits ? abstract.substr(labelWidth) : "\n" + abstract;
  }
  result += '\n';
  const std::string discussion = wrapped(element.discussion, screenWidth, kDiscussionIndent);
  return discussion.empty() ? result : result + discussion + "\n";
}

std::string rendered(const Section& section, int screenWidth) {
  std::string result = section.header + ":\n";
  for (const HelpElement& element : section.elements) result += rendered(element, screenWidth);
  return result;
}

Section& sectionTitled(std::vector<Section>& sections, const std::string& title) {
  const auto found = std::ranges::find(sections, title, &Section::header);
  return found != sections.end() ? *found : sections.emplace_back(Section{title});
}

std::string upperCased(std::string text) {
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

}  // namespace

HelpGenerator::HelpGenerator(CommandStack stack)
    : stack_(std::move(stack)),
      configuration_(stack_.back().configuration()),
      declared_(stack_.back()) {}

std::string HelpGenerator::usage() const {
  if (configuration_.usage) return *configuration_.usage;
  std::vector<const ArgumentDefinition*> shown;
  for (const ArgumentDefinition& definition : declared_.arguments.definitions())
    if (definition.isVisible) shown.push_back(&definition);
  std::string line = commandPath(stack_);
  if (shown.size() > kMaximumOfDefinitionsInUsage) {
    std::erase_if(shown, [](const ArgumentDefinition* definition) {
      return definition->isOptional && !definition->isPositional();
    });
    line += shown.empty() ? " <options>" : " [<options>]";
  }
  for (const ArgumentDefinition* definition : shown) line += " " + definition->synopsis();
  if (!configuration_.subcommands.empty()) line += " <subcommand>";
  return line;
}

std::string HelpGenerator::usageMessage() const {
  const std::string text = usage();
  return text.empty() ? text : "Usage: " + withLaterLinesIndented(text, kUsageIndent);
}

std::vector<Section> HelpGenerator::sections() const {
  Section arguments{"ARGUMENTS"};
  Section options{"OPTIONS"};
  Section subcommands{"SUBCOMMANDS"};
  std::vector<Section> titled;
  for (const ArgumentDefinition& definition : declared_.arguments.definitions()) {
    if (!definition.isVisible) continue;
    Section& section = !definition.sectionTitle.empty()
                           ? sectionTitled(titled, upperCased(definition.sectionTitle))
                       : definition.isPositional() ? arguments
                                                   : options;
    section.elements.push_back(element(definition));
  }
  for (const ArgumentDefinition& flag : builtInFlags(stack_))
    options.elements.push_back(element(flag));
  for (const CommandType& child : configuration_.subcommands)
    if (const CommandConfiguration configuration = child.configuration();
        configuration.shouldDisplay)
      subcommands.elements.push_back(element(configuration, configuration_.isDefault(child)));

  std::vector<Section> result{std::move(arguments)};
  std::ranges::move(titled, std::back_inserter(result));
  result.push_back(std::move(options));
  result.push_back(std::move(subcommands));
  std::erase_if(result, [](const Section& section) { return section.elements.empty(); });
  return result;
}

std::string HelpGenerator::renderedOverview(int screenWidth) const {
  const std::string& abstract = configuration_.abstract;
  const std::string& discussion = configuration_.discussion;
  if (abstract.empty() && discussion.empty()) return {};
  const std::string between = abstract.empty() || discussion.empty() ? "" : "\n\n";
  return wrapped("OVERVIEW: " + abstract + between + discussion, screenWidth) + "\n\n";
}

std::string HelpGenerator::subcommandPointer() const {
  const auto isVisible = [](const CommandType& child) {
    return child.configuration().shouldDisplay;
  };
  if (std::ranges::none_of(configuration_.subcommands, isVisible)) return {};
  std::string path = commandPath(stack_);
  path.insert(commandPath({stack_.front()}).size(), " help");
  return "\n  See '" + path + " <subcommand>' for detailed help.";
}

std::string HelpGenerator::rendered(int screenWidth) const {
  std::string page = renderedOverview(screenWidth);
  if (const std::string text = usage(); !text.empty())
    page += "USAGE: " + withLaterLinesIndented(text, kUsageIndent) + "\n\n";
  bool isFirst = true;
  for (const Section& section : sections()) {
    if (!std::exchange(isFirst, false)) page += '\n';
    page += ArgumentParser::rendered(section, screenWidth);
  }
  return page + subcommandPointer();
}

std::string primaryHelpName(const CommandStack& stack) {
  const Names names = helpNames(stack);
  const Name* preferred = names.preferred();
  return preferred ? preferred->written() : std::string();
}

}  // namespace ArgumentParser
