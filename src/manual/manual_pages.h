#pragma once

#include <string>
#include <vector>

#include "ArgumentParser/parsable_command.h"

/// The program's manual, from the same declarations as its help: what the tool-information dump
/// says of each command, and the texts that commands add below their help pages.
namespace tavi::manual {

struct ManualPage {
  std::string name;  ///< "tavicli-tags-add"
  std::string text;  ///< in roff
};

/// The page of the root first, then those of all commands that help shows, each above those of its
/// subcommands. `version`: "1.0.0".
std::vector<ManualPage> manualPages(const ArgumentParser::CommandType& root,
                                    const std::string& version);

}  // namespace tavi::manual
