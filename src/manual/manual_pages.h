#pragma once

#include <string>
#include <vector>

#include "ArgumentParser/parsable_command.h"

/// The program's manual, from the same declarations as its help: what the tool-information dump
/// says of each command, and the texts that commands add below their help pages.
namespace tavi::manual {

struct ManualPage {
  std::string name;  ///< "tavicli-tags-add"
  int section;       ///< 1
  std::string text;  ///< in roff

  /// "man1/tavicli-tags-add.1", below the folder of all manual pages.
  std::string path() const;
};

struct Release {
  std::string version;  ///< "1.0.0 (1)"
  std::string date;     ///< "2026-11-25"
};

/// The page of the root first, then those of all commands that help shows, each above those of its
/// subcommands.
std::vector<ManualPage> manualPages(const ArgumentParser::CommandType& root,
                                    const Release& release);

}  // namespace tavi::manual
