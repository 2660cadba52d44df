#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "vault/folder.h"

namespace tavi::import {

/// The possible targets of links in a folder: files by path and name, notes by path, name and
/// alias. Names and aliases match case-insensitively, paths exactly.
class VaultIndex {
 public:
  /// Indexes the files that are not notes. Keeps references into `folder`.
  explicit VaultIndex(const vault::Folder& folder);

  void addNote(const vault::FoundFile& file, const std::string& title);
  /// Names and paths take precedence over aliases, in whatever order they are added.
  void addAlias(const std::string& alias, const std::string& title);

  /// The file at this path, relative to the folder; null if there is none.
  const vault::FoundFile* file(const std::string& path) const;
  /// The file with this path or, in any folder, this name; case-insensitive. Null if there is none.
  const vault::FoundFile* fileNamed(const std::string& name) const;
  /// The title of the note at this path; null if there is none.
  const std::string* titleAt(const std::string& path) const;
  /// The title of the note that a wiki link refers to by this path, name or alias, with or without
  /// an extension; null if there is none.
  const std::string* titleNamed(const std::string& name) const;

 private:
  std::unordered_map<std::string, const vault::FoundFile*> files_, filesByName_;
  std::unordered_map<std::string, std::string> titlesByPath_, titlesByName_, titlesByAlias_;
};

}  // namespace tavi::import
