#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "domain/importing_store.h"

namespace tavi::import {

/// The notes that were in the store when an import began.
class KnownNotes {
 public:
  /// Reads the metadata of all notes. `store` must outlive this object; null means an empty store.
  explicit KnownNotes(NoteStore* store);

  /// The metadata of a note, without its title; null if there is no such note.
  const NoteMetadata* find(const std::string& id) const;
  /// Reserves the note of this id for its own file: `take` does not return it.
  void reserve(const std::string& id) { taken_.insert(id); }
  /// The id of a note with exactly this text and these attachments that was not returned before;
  /// empty if there is none.
  std::string take(const ImportedNote& note);
  /// How the existing note with the id of `note` differs from it: "text", "attachments", "pins",
  /// "place". Unless tavi-export wrote the file (`isExported`), only text and attachments count.
  std::vector<std::string> differences(const ImportedNote& note, bool isExported) const;

 private:
  bool hasText(const NoteMetadata& metadata, const std::string& text) const;

  NoteStore* store_;
  std::unordered_map<std::string, NoteMetadata> notes_;
  std::unordered_multimap<std::string, std::string> idsByHash_;
  std::unordered_set<std::string> taken_;
};

}  // namespace tavi::import
