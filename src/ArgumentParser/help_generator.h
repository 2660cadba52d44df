#pragma once

#include <string>
#include <vector>

#include "ArgumentParser/command_tree.h"

namespace ArgumentParser {

/// The help page of the last command of a stack, made from its declarations.
class HelpGenerator {
 public:
  /// One row of a page.
  struct Element {
    std::string label;
    std::string abstract = {};
    std::string discussion = {};
  };
  struct Section {
    std::string header;  ///< "ARGUMENTS"
    std::vector<Element> elements = {};
  };

  explicit HelpGenerator(CommandStack stack);

  std::string usage() const;              ///< "tool add [--limit <limit>] <page>"; may be empty
  std::string usageMessage() const;       ///< with "Usage: " in front; empty when there is no usage
  std::vector<Section> sections() const;  ///< none of them empty

  /// The whole page. Sections end with a line break; the pointer to the pages of subcommands,
  /// which ends the page of a command that has some, does not.
  std::string rendered(int screenWidth) const;

 private:
  std::string renderedOverview(int screenWidth) const;
  std::string subcommandPointer() const;

  CommandStack stack_;
  CommandConfiguration configuration_;
  DeclaredCommand declared_;
};

/// "--help" as messages name it: the first long help name, else the first; empty for none.
std::string primaryHelpName(const CommandStack& stack);

}  // namespace ArgumentParser
