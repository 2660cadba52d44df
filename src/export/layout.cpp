#include "export/layout.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <tuple>

#include "platform/text/folding.h"
#include "vault/names.h"

namespace tavi::exporting {
namespace {

namespace fs = std::filesystem;
using platform::text::foldedForSearch;

std::string folderOf(NoteLocation location) {
  switch (location) {
    case NoteLocation::archive:
      return "Archive/";
    case NoteLocation::trash:
      return "Trash/";
    case NoteLocation::notes:
      break;
  }
  return "";
}

/// Whether `stem` is the name, optionally followed by a number.
bool isNamed(const std::string& stem, const std::string& name) {
  if (!stem.starts_with(name)) return false;
  const std::string rest = stem.substr(name.size());
  return rest.empty() || (rest.size() > 1 && rest[0] == ' ' &&
                          rest.find_first_not_of("0123456789", 1) == std::string::npos);
}

std::string notePath(const NoteMetadata& note, const std::string& folder, const std::string& stem) {
  if (note.attachments.empty()) return folder + stem + ".md";
  std::string name = stem + ".md";
  const auto isTaken = [&] {
    return std::any_of(note.attachments.begin(), note.attachments.end(), [&](const auto& file) {
      return platform::text::equalIgnoringCase(file, name);
    });
  };
  for (int number = 2; isTaken(); ++number) name = stem + " " + std::to_string(number) + ".md";
  return folder + stem + "/" + name;
}

}  // namespace

Layout::Layout(const std::vector<NoteMetadata>& notes,
               const std::unordered_map<std::string, std::string>& before, Occupant occupant)
    : occupant_(std::move(occupant)), claimed_{"archive", "trash"} {
  std::vector<const NoteMetadata*> unnamed;
  for (const NoteMetadata& note : notes) {
    const auto known = before.find(note.id);
    if (known == before.end() || !keepsName(note, known->second)) unnamed.push_back(&note);
  }
  std::sort(unnamed.begin(), unnamed.end(), [](const NoteMetadata* a, const NoteMetadata* b) {
    return std::tie(a->created, a->id) < std::tie(b->created, b->id);
  });
  for (const NoteMetadata* note : unnamed) giveName(*note);
}

std::string Layout::beside(const std::string& notePath, const std::string& filename) {
  return (fs::path(notePath).parent_path() / filename).string();
}

bool Layout::keepsName(const NoteMetadata& note, const std::string& before) {
  const std::string folder = folderOf(note.location);
  if (!before.starts_with(folder)) return false;
  const fs::path rest = before.substr(folder.size());
  // "stem.md" or "stem/stem.md"
  const std::string stem =
      rest.has_parent_path() ? rest.parent_path().string() : rest.stem().string();
  if (!isNamed(stem, vault::fileNameForTitle(note.title))) return false;
  return claim(note, {folder, stem}, true);
}

void Layout::giveName(const NoteMetadata& note) {
  const std::string folder = folderOf(note.location);
  const std::string name = vault::fileNameForTitle(note.title);
  std::string stem = name;
  for (int number = 2; !claim(note, {folder, stem}, false); ++number)
    stem = name + " " + std::to_string(number);
}

bool Layout::claim(const NoteMetadata& note, const Name& name, bool isKnown) {
  const std::string key = foldedForSearch(name.folder + name.stem);
  if (claimed_.contains(key)) return false;
  std::string path = notePath(note, name.folder, name.stem);
  if (!isKnown) {
    const auto there = occupant_(path);
    if (there && *there != note.id) return false;
  }
  claimed_.insert(key);
  paths_.emplace(note.id, std::move(path));
  return true;
}

}  // namespace tavi::exporting
