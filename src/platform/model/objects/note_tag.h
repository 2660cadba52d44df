#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavimodel {

class KVNote;
class ManagedObjectContext;

/// A tag by its canonical name. Tags are written in the notes' texts: what is done to a tag is done
/// to the texts of its notes, without touching their modification dates. Text in code stays, and so
/// does the text of a locked note: of that only the record changes which tags it carries.
class KVNoteTag {
 public:
  /// Every tag that has notes.
  static std::vector<KVNoteTag> populatedNotesTags(ManagedObjectContext& context);
  /// Every tag, with or without notes.
  static std::vector<KVNoteTag> allTags(ManagedObjectContext& context);
  /// Tags with a note pinned in them.
  static std::vector<KVNoteTag> tagsWithPins(ManagedObjectContext& context);
  /// The tag of exactly this name, or nothing. The ancestors of a tag are tags.
  static std::optional<KVNoteTag> tagWithName(std::string_view name, ManagedObjectContext& context);
  /// The tag of this name, which comes into being with its first note.
  static KVNoteTag getOrCreateTagWithName(std::string_view name, ManagedObjectContext& context);

  const std::string& title() const { return title_; }
  /// The notes that carry exactly this tag.
  std::vector<KVNote*> notes() const;
  std::size_t noteCount() const;
  /// The notes that carry this tag or one below it: those that a rename changes.
  std::size_t noteCountWithChildren() const;

  /// Writes the hashtag into each text, at the top or at the bottom, where it is not there yet.
  void addTagToNotes(const std::vector<KVNote*>& notes, bool bottom) const;
  /// Takes every mention of exactly this tag out of each text.
  void deleteTagInNotes(const std::vector<KVNote*>& notes) const;
  /// Rewrites the tag and its children in every note, and moves the pins; an existing tag of the
  /// new name takes them in. Where a note carries the tag and its text does not mention it, the new
  /// hashtag is added at the top or at the bottom.
  void renameTagWithTagNamed(const std::string& newName, bool bottom) const;
  /// Takes the tag out of all its notes, and the pins in it. Children stay.
  void deleteTag() const;

 private:
  KVNoteTag(ManagedObjectContext& context, std::string title)
      : context_(&context), title_(std::move(title)) {}

  ManagedObjectContext* context_;
  std::string title_;
};

}  // namespace tavimodel
