#include "cli/help.h"

#include <algorithm>
#include <cctype>

#include "cli/help_texts.h"

namespace tavi {
namespace {

using ArgumentParser::CommandStack;
using ArgumentParser::CommandType;

std::vector<std::string> positionalWords(const Arguments& arguments) {
  std::vector<std::string> words;
  std::ranges::remove_copy_if(arguments, std::back_inserter(words),
                              [](const auto& argument) { return argument.starts_with('-'); });
  return words;
}

bool hasHelpFlag(const Arguments& arguments) {
  return std::ranges::any_of(
      arguments, [](const auto& argument) { return argument == "-h" || argument == "--help"; });
}

std::vector<std::string_view> lines(std::string_view text) {
  std::vector<std::string_view> result;
  while (true) {
    const std::size_t end = text.find('\n');
    result.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return result;
    text.remove_prefix(end + 1);
  }
}

/// Removes the line that points to `help <subcommand>`, since the overview has a section on help.
std::string withoutPointer(std::string_view page) {
  auto kept = lines(page);
  const auto pointer = std::ranges::find_if(kept, [](std::string_view line) {
    return line.find("See 'tavicli help <subcommand>'") != std::string_view::npos;
  });
  if (pointer != kept.end()) {
    const bool blankAbove = pointer != kept.begin() &&
                            (pointer - 1)->find_first_not_of(" \t") == std::string_view::npos;
    kept.erase(pointer - (blankAbove ? 1 : 0), pointer + 1);
  }
  std::string text;
  for (std::string_view line : kept) text.append(line).append("\n");
  text.pop_back();
  return text;
}

std::string sectionTitle(const CommandStack& stack) {
  std::string title;
  for (const CommandType& command : stack)
    title.append(title.empty() ? "" : " ").append(command.configuration().commandName);
  std::ranges::transform(title, title.begin(), [](char letter) {
    return static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  });
  return title;
}

void appendSections(std::string& text, const CommandStack& stack) {
  for (const CommandType& command : stack.back().configuration().subcommands) {
    CommandStack deeper = stack;
    deeper.push_back(command);
    text.append("\n").append(72, '-').append("\n");
    text.append(sectionTitle(deeper)).append("\n\n").append(commandHelp(deeper));
    appendSections(text, deeper);
  }
}

}  // namespace

bool isShortHelpRequest(const Arguments& arguments) {
  const auto words = positionalWords(arguments);
  return arguments.empty() || (words.empty() && hasHelpFlag(arguments)) ||
         words == std::vector<std::string>{"help"};
}

bool isFullReferenceRequest(const Arguments& arguments) {
  return positionalWords(arguments) == std::vector<std::string>{"help", "all"};
}

std::optional<std::vector<std::string>> helpTargetPath(const Arguments& arguments) {
  auto words = positionalWords(arguments);
  if (words.empty()) return std::nullopt;
  if (words[0] == "help" && words.size() > 1) {
    words.erase(words.begin());
    return words;
  }
  if (!hasHelpFlag(arguments)) return std::nullopt;
  return words;
}

std::optional<CommandStack> resolveCommandPath(const CommandType& root,
                                               const std::vector<std::string>& path) {
  CommandStack stack{root};
  for (const std::string& word : path) {
    const auto next = ArgumentParser::subcommand(stack.back(), word);
    if (!next) break;
    stack.push_back(*next);
  }
  if (stack.size() == 1) return std::nullopt;
  return stack;
}

std::string commandHelp(const CommandStack& stack) {
  std::string text = ArgumentParser::helpMessage(stack) + "\n";
  const auto command = stack.back().make();
  if (const auto* withFooter = dynamic_cast<const HelpFooter*>(command.get()))
    text.append(withFooter->footer()).append("\n");
  return text;
}

std::string shortOverview(const CommandType& root) {
  return withoutPointer(ArgumentParser::helpMessage({root})) + "\n\n" + std::string(overviewText) +
         "\n";
}

std::string fullReference(const CommandType& root) {
  std::string text = shortOverview(root);
  appendSections(text, {root});
  return text;
}

}  // namespace tavi
