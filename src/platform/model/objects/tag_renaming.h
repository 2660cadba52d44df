#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/model/objects/note.h"

namespace tavimodel {

/// The renaming of a tag and its descendants: `work/a` becomes `job/a`. It must outlive the changes
/// that it returns.
class TagRenaming {
 public:
  /// `bottom` says where a hashtag is added to a text that lacks it.
  TagRenaming(std::string tag, std::string newName, bool bottom)
      : tag_(std::move(tag)), newName_(std::move(newName)), bottom_(bottom) {}

  /// Reads a note's text and tags, and returns its change. Of a locked note only the tag rows
  /// change.
  NoteChange ofNote(KVNote& note) const;
  /// Renames the tags in which the note is pinned.
  void movePins(KVNote& note) const;

 private:
  using Names = std::vector<std::string>;

  struct Renamed {
    std::string text;
    std::optional<zephyrdown::ZDKTextSummary> summary;  ///< absent: not known without parsing
  };

  std::string renamed(const std::string& name) const;
  std::optional<Renamed> renamedText(const std::string& text, const Names& rows) const;
  void renameRows(KVNote& note) const;

  std::string tag_, newName_;
  bool bottom_;
};

}  // namespace tavimodel
