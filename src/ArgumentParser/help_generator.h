#pragma once

#include <string>
#include <vector>

#include "ArgumentParser/command_tree.h"

namespace ArgumentParser {

/// Generates the help page of the last command of a stack from its declarations.
class HelpGenerator {
 public:
  /// One entry of a section: an argument or a subcommand.
  struct Element {
    std::string label;  ///< "-t, --title <title>"
    std::string abstract = {};
    std::string discussion = {};
  };
  /// A titled list of entries.
  struct Section {
    std::string header;  ///< "ARGUMENTS"
    std::vector<Element> elements = {};
  };

  explicit HelpGenerator(CommandStack stack);

  std::string usage() const;              ///< "tool add [--limit <limit>] <page>"; may be empty
  std::string usageMessage() const;       ///< "Usage: " and the usage; empty if there is no usage
  std::vector<Section> sections() const;  ///< empty sections are left out

  /// The whole page, wrapped to the width. It ends with a line break, except for a command with
  /// subcommands, whose page ends with a pointer to the subcommands' pages.
  std::string rendered(int screenWidth) const;

 private:
  std::string renderedOverview(int screenWidth) const;
  std::string subcommandPointer() const;

  CommandStack stack_;
  CommandConfiguration configuration_;
  DeclaredCommand declared_;
};

/// The help flag as messages name it, "--help": the first long name, else the first name; empty if
/// help has no names.
std::string primaryHelpName(const CommandStack& stack);

}  // namespace ArgumentParser
