#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "domain/importing_store.h"

namespace tavi::import {

/// The notes that a store held when an import began.
class KnownNotes {
 public:
  /// `store`: null for an empty one.
  explicit KnownNotes(NoteStore* store);

  /// What is known of a note, but its text, title and to-dos; null for none.
  const NoteMetadata* find(const std::string& id) const;
  /// The note of this id belongs to a file: `take` does not give it to another.
  void reserve(const std::string& id) { taken_.insert(id); }
  /// The id of a note with exactly this text and these attachments, that has not been asked for
  /// yet; empty for none.
  std::string take(const ImportedNote& note);
  /// In what the note of the store is not as `note`, which has its id: "text", "place", "pins",
  /// "attachments". Of a file that tavi-export did not write only text and attachments count.
  std::vector<std::string> differences(const ImportedNote& note, bool isExported) const;

 private:
  bool hasText(const NoteMetadata& metadata, const std::string& text) const;

  NoteStore* store_;
  std::unordered_map<std::string, NoteMetadata> notes_;
  std::unordered_multimap<std::string, std::string> idsByHash_;
  std::unordered_set<std::string> taken_;
};

}  // namespace tavi::import
