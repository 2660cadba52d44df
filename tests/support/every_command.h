#pragma once

#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "ArgumentParser/command_line.h"

/// For tests that check a property of every command.
namespace support {

/// Calls `visit` with the stack's command and all its descendants, parents first.
inline void forEachCommand(const ArgumentParser::CommandStack& stack,
                           const std::function<void(const ArgumentParser::CommandStack&)>& visit) {
  visit(stack);
  for (const auto& child : stack.back().configuration().subcommands) {
    ArgumentParser::CommandStack below = stack;
    below.push_back(child);
    forEachCommand(below, visit);
  }
}

/// The command's path without the program's name: "tags", "add".
inline std::vector<std::string> pathBelowRoot(const ArgumentParser::CommandStack& stack) {
  std::vector<std::string> names;
  for (auto command = stack.begin() + 1; command != stack.end(); ++command)
    names.push_back(command->configuration().commandName);
  return names;
}

inline std::vector<std::string> wordsOf(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

inline std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// The names of options and flags on a help page, from its label column.
inline std::vector<std::string> namesOnPage(const std::string& page) {
  std::vector<std::string> names;
  for (const std::string& line : linesOf(page)) {
    if (!line.starts_with("  -")) continue;
    for (std::string word : wordsOf(line)) {
      if (!word.starts_with('-')) break;
      if (word.ends_with(',')) word.pop_back();
      names.push_back(word);
    }
  }
  return names;
}

}  // namespace support
