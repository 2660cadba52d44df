#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "domain/note_records.h"

namespace tavi::exporting {

/// Assigns the notes of a store to files in the folder of an export. Paths are relative to it:
///
///   Shopping.md            a note
///   Mars/Mars.md           a note with attachments, which are in the same folder
///   Mars/map.png
///   Archive/Old plan.md    an archived note
///   Trash/Draft 2.md       a note in the trash; another one there has the same title
///
/// A note keeps its file name while its title and location stay the same. No two names differ only
/// in case.
class Layout {
 public:
  /// The id of the note in the file at a path; empty if the file is not an exported note, absent if
  /// there is no file.
  using Occupant = std::function<std::optional<std::string>(const std::string& path)>;

  /// `notes`: in any order. `before`: the paths of the last export by note id.
  Layout(const std::vector<NoteMetadata>& notes,
         const std::unordered_map<std::string, std::string>& before, Occupant occupant);

  const std::string& pathOf(const std::string& id) const { return paths_.at(id); }
  /// The path of an attachment of the note at `notePath`.
  static std::string beside(const std::string& notePath, const std::string& filename);

 private:
  /// The name of a note's file, or of its folder if it has attachments.
  struct Name {
    std::string folder;  ///< "", "Archive/" or "Trash/"
    std::string stem;
  };
  bool keepsName(const NoteMetadata& note, const std::string& before);
  void giveName(const NoteMetadata& note);
  bool claim(const NoteMetadata& note, const Name& name, bool isKnown);

  Occupant occupant_;
  std::unordered_set<std::string> claimed_;  ///< case-folded folders and stems
  std::unordered_map<std::string, std::string> paths_;
};

}  // namespace tavi::exporting
