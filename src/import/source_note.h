#pragma once

#include <optional>
#include <string>
#include <vector>

#include "domain/importing_store.h"
#include "vault/folder.h"

namespace tavi::import {

/// A Markdown file of a folder, understood.
struct SourceNote {
  /// Of a file that tavi-export wrote: the note as it was, but for the bytes of its files, of which
  /// there are the names only. Its front matter is no part of the text.
  std::optional<ImportedNote> exported;
  std::string title;  ///< that the note has or will have

  // Of any other file:
  std::string text;  ///< UTF-8 without a byte order mark, with a heading, without tags put in
  std::vector<std::string> tags;             ///< canonical names, of the front matter
  std::vector<std::string> aliases;          ///< other names by which wiki links mean the note
  std::optional<Instant> created, modified;  ///< of the front matter, else of the file
  std::vector<std::string> remarks;          ///< what was not understood: a sentence each
};

/// Reads one file. Front matter goes from the text when all it says has a place in a note of its
/// own (title, tags, dates); where it says more it stays, whole. A heading is put in where neither
/// the text's first heading is of level 1 nor its title is the file's name. `encoding`: of files
/// that are not UTF-8; empty for none. Throws vault::FileFault.
SourceNote readSourceNote(const vault::FoundFile& file, const std::string& encoding);

/// The name of a tag, or what is left of it when the marks that no tag can hold are taken out;
/// empty where nothing is left.
std::string tagNameOf(const std::string& text);

}  // namespace tavi::import
