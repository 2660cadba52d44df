#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "vault/folder.h"

namespace tavi::import {

/// What the links of a folder's notes may mean: its other files by their paths, and its notes by
/// paths, names and aliases. Names match without case.
class VaultIndex {
 public:
  /// Keeps references into `folder`.
  explicit VaultIndex(const vault::Folder& folder);

  void addNote(const vault::FoundFile& file, const std::string& title);
  /// Names and paths come before aliases, whenever they are added.
  void addAlias(const std::string& alias, const std::string& title);

  /// By a path from the folder; exact. Null for none.
  const vault::FoundFile* file(const std::string& path) const;
  /// By a path, or by a name wherever it lies.
  const vault::FoundFile* fileNamed(const std::string& name) const;
  /// The title of the note at this path, exact; null for none.
  const std::string* titleAt(const std::string& path) const;
  /// The title of the note that a wiki link means by this name or path, with or without an
  /// extension; null for none.
  const std::string* titleNamed(const std::string& name) const;

 private:
  std::unordered_map<std::string, const vault::FoundFile*> files_, filesByName_;
  std::unordered_map<std::string, std::string> titlesByPath_, titlesByName_, titlesByAlias_;
};

}  // namespace tavi::import
