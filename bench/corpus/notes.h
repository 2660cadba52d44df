#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "vocabulary.h"

namespace corpus {

/// Where a note is.
enum class Location { notes, trash, archive };

/// A generated note.
struct Note {
  std::string uniqueIdentifier;
  std::string title;
  std::string text;               ///< Markdown; begins with the title as a heading
  std::vector<std::size_t> tags;  ///< indexes into Tags::names, ascending by name, without repeats
  double created = 0;             ///< seconds since 1970-01-01 UTC
  double modified = 0;            ///< unique in the corpus
  Location location = Location::notes;
  bool pinned = false;
};

/// The notes of one corpus. Each is generated from its number alone.
class Notes {
 public:
  explicit Notes(std::size_t count) : count_(count), tags_(vocabulary_) {}

  std::size_t count() const { return count_; }
  const Tags& tags() const { return tags_; }
  Note note(std::size_t index) const;
  /// One note of at least `bytes`, modified after all others, with the rare word in ten places.
  Note hugeNote(std::size_t bytes) const;

 private:
  std::string title(std::size_t index) const;
  Note withoutText(std::size_t index) const;

  std::size_t count_;
  Vocabulary vocabulary_;
  Tags tags_;
};

}  // namespace corpus
