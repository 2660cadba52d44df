#pragma once

#include <optional>
#include <string>
#include <vector>

#include "domain/importing_store.h"
#include "vault/folder.h"

namespace tavi::import {

/// The contents of a Markdown file.
struct SourceNote {
  /// Only for a file that tavi-export wrote: the note it was, with the names but not the bytes of
  /// its attachments. The text does not include the front matter.
  std::optional<ImportedNote> exported;
  std::string title;  ///< of the note that the file becomes

  // Only for other files:
  std::string text;  ///< UTF-8 without a byte order mark; has a heading, but not yet the tags
  std::vector<std::string> tags;             ///< canonical names, from the front matter
  std::vector<std::string> aliases;          ///< other names of the note in wiki links
  std::optional<Instant> created, modified;  ///< from the front matter, else from the file
  std::vector<std::string> remarks;          ///< one sentence for each thing not understood
};

/// Reads a file. Removes the front matter from the text if a note can store all of it (title, tags,
/// dates); otherwise the front matter stays as a whole. Adds a heading if the text's first heading
/// is not of level 1 and its title is not the file's name. `encoding`: for files that are not
/// UTF-8; empty refuses them. Throws vault::FileFault.
SourceNote readSourceNote(const vault::FoundFile& file, const std::string& encoding);

/// The canonical name of a tag, after removing characters that tags cannot contain if necessary;
/// empty if no name is left.
std::string tagNameOf(const std::string& text);

}  // namespace tavi::import
