#pragma once

#include <set>
#include <string>
#include <vector>

#include "import/vault_index.h"

namespace tavi::import {

/// A file that becomes an attachment of a note.
struct LinkedFile {
  std::string filename;  ///< in the note; unique among its attachments
  const vault::FoundFile* file = nullptr;
};

/// A text with its links rewritten, and the attachments that they need.
struct RelinkedText {
  std::string text;
  std::vector<LinkedFile> files;     ///< in the order of their first links
  std::vector<std::string> missing;  ///< link destinations that look like files but do not exist
};

/// Rewrites the links in the text of the file `from` to those of a note: a link to a file becomes
/// one to an attachment, and a link to a note becomes a wiki link with its title. Other links stay
/// as they are. `unusable`: paths of files that cannot become attachments.
RelinkedText relinked(const std::string& text, const vault::FoundFile& from,
                      const VaultIndex& index, const std::set<std::string>& unusable = {});

}  // namespace tavi::import
