#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "domain/note_records.h"

namespace tavi::exporting {

/// Where the notes of a store lie in the folder of an export, as paths from that folder:
///
///   Shopping.md            a note
///   Mars/Mars.md           a note with attachments, which lie beside it under their own names
///   Mars/map.png
///   Archive/Old plan.md    an archived note
///   Trash/Draft 2.md       one in the trash; another there has its title
///
/// A note keeps its name as long as its title and place stay. Names differ without case.
class Layout {
 public:
  /// The id of the note in a file that no export is known to have written there; empty for a file
  /// of another kind, absent for no file.
  using Occupant = std::function<std::optional<std::string>(const std::string& path)>;

  /// `before`: paths of the last export by the notes' ids. `notes`: in any order.
  Layout(const std::vector<NoteMetadata>& notes,
         const std::unordered_map<std::string, std::string>& before, Occupant occupant);

  const std::string& pathOf(const std::string& id) const { return paths_.at(id); }
  /// The path of an attachment of the note at `notePath`.
  static std::string beside(const std::string& notePath, const std::string& filename);

 private:
  struct Name {
    std::string folder;  ///< "", "Archive/" or "Trash/"
    std::string stem;
  };
  bool keepsName(const NoteMetadata& note, const std::string& before);
  void giveName(const NoteMetadata& note);
  bool claim(const NoteMetadata& note, const Name& name, bool isKnown);

  Occupant occupant_;
  std::unordered_set<std::string> claimed_;  ///< folders and stems, folded
  std::unordered_map<std::string, std::string> paths_;
};

}  // namespace tavi::exporting
