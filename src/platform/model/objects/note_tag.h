#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavimodel {

class KVNote;
class ManagedObjectContext;

/// A tag, identified by its canonical name. Tags are hashtags in the notes' texts, so changing a
/// tag rewrites the texts of its notes, but not their modification dates. Text in code does not
/// change, nor does the text of a locked note, of which only the tag rows change.
class KVNoteTag {
 public:
  /// All tags that have notes.
  static std::vector<KVNoteTag> populatedNotesTags(ManagedObjectContext& context);
  /// All tags, with or without notes.
  static std::vector<KVNoteTag> allTags(ManagedObjectContext& context);
  /// All tags in which a note is pinned.
  static std::vector<KVNoteTag> tagsWithPins(ManagedObjectContext& context);
  /// The tag with exactly this name, if it exists. The ancestors of a tag exist, too.
  static std::optional<KVNoteTag> tagWithName(std::string_view name, ManagedObjectContext& context);
  /// The tag with this name; if it is new, it is stored with its first note.
  static KVNoteTag getOrCreateTagWithName(std::string_view name, ManagedObjectContext& context);

  const std::string& title() const { return title_; }
  /// The notes with exactly this tag.
  std::vector<KVNote*> notes() const;
  std::size_t noteCount() const;
  /// The number of notes with this tag or a descendant, which a rename would change.
  std::size_t noteCountWithChildren() const;

  /// Adds the hashtag at the top or bottom of each text that lacks it.
  void addTagToNotes(const std::vector<KVNote*>& notes, bool bottom) const;
  /// Removes all hashtags of exactly this tag from each text.
  void deleteTagInNotes(const std::vector<KVNote*>& notes) const;
  /// Renames the tag and its descendants in every note, moves the pins, and saves; if a tag with
  /// the new name exists, they are merged. If a note's rows have the tag but its text does not, the
  /// new hashtag is added at the top or bottom.
  void renameTagWithTagNamed(const std::string& newName, bool bottom) const;
  /// Removes the tag from all its notes, and all pins in it. Its descendants stay.
  void deleteTag() const;

 private:
  KVNoteTag(ManagedObjectContext& context, std::string title)
      : context_(&context), title_(std::move(title)) {}

  ManagedObjectContext* context_;
  std::string title_;
};

}  // namespace tavimodel
