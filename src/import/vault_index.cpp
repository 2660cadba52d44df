#include "import/vault_index.h"

#include <filesystem>

#include "platform/text/folding.h"

namespace tavi::import {
namespace {

using platform::text::foldedForSearch;

template <class Map>
const typename Map::mapped_type* find(const Map& map, const std::string& key) {
  const auto found = map.find(key);
  return found == map.end() ? nullptr : &found->second;
}

std::string withoutExtension(const std::string& path) {
  if (!vault::isMarkdownName(path)) return path;
  return std::filesystem::path(path).replace_extension().string();
}

}  // namespace

VaultIndex::VaultIndex(const vault::Folder& folder) {
  for (const vault::FoundFile& file : folder.others) {
    files_.emplace(file.relative, &file);
    filesByName_.emplace(foldedForSearch(file.path.filename().string()), &file);
    filesByName_.emplace(foldedForSearch(file.relative), &file);
  }
}

void VaultIndex::addNote(const vault::FoundFile& file, const std::string& title) {
  titlesByPath_.emplace(file.relative, title);
  titlesByName_.emplace(foldedForSearch(withoutExtension(file.relative)), title);
  titlesByName_.emplace(foldedForSearch(file.path.stem().string()), title);
}

void VaultIndex::addAlias(const std::string& alias, const std::string& title) {
  titlesByAlias_.emplace(foldedForSearch(alias), title);
}

const vault::FoundFile* VaultIndex::file(const std::string& path) const {
  const auto* found = find(files_, path);
  return found != nullptr ? *found : nullptr;
}

const vault::FoundFile* VaultIndex::fileNamed(const std::string& name) const {
  const auto* found = find(filesByName_, foldedForSearch(name));
  return found != nullptr ? *found : nullptr;
}

const std::string* VaultIndex::titleAt(const std::string& path) const {
  return find(titlesByPath_, path);
}

const std::string* VaultIndex::titleNamed(const std::string& name) const {
  const std::string key = foldedForSearch(withoutExtension(name));
  const std::string* title = find(titlesByName_, key);
  return title != nullptr ? title : find(titlesByAlias_, key);
}

}  // namespace tavi::import
