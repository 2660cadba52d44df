#pragma once

#include <set>
#include <string>
#include <vector>

#include "import/vault_index.h"

namespace tavi::import {

/// A file that comes along with a note.
struct LinkedFile {
  std::string filename;  ///< in the note; no other of its files has it
  const vault::FoundFile* file = nullptr;
};

struct RelinkedText {
  std::string text;
  std::vector<LinkedFile> files;     ///< in the order of their first links
  std::vector<std::string> missing;  ///< destinations that look like files and are not there
};

/// The text of the note at `from`, with its links as a note of the store has them: a file is linked
/// by its name alone and comes along, a note by its title in a wiki link. Links that mean neither
/// stay as they are. `unusable`: paths of files that do not come along.
RelinkedText relinked(const std::string& text, const vault::FoundFile& from,
                      const VaultIndex& index, const std::set<std::string>& unusable = {});

}  // namespace tavi::import
