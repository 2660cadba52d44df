#pragma once

#include <string>
#include <vector>

#include "ArgumentParser/parsable_command.h"

/// Generates the program's manual pages from the declarations that its help comes from: the JSON of
/// ArgumentParser::dumpHelp and the footers of the help pages.
namespace tavi::manual {

/// One manual page.
struct ManualPage {
  std::string name;  ///< "tavicli-tags-add"
  int section;       ///< 1: user commands; 7: conventions and languages
  std::string text;  ///< roff with the macros of man(7)

  /// "man1/tavicli-tags-add.1", relative to the folder of all manual pages.
  std::string path() const;
};

/// The release that the pages belong to.
struct Release {
  std::string version;  ///< "1.0.0 (1)"
  std::string date;     ///< "2026-11-25"
};

/// The pages of the root and of all commands that help shows; each command precedes its
/// subcommands.
std::vector<ManualPage> manualPages(const ArgumentParser::CommandType& root,
                                    const Release& release);

}  // namespace tavi::manual
