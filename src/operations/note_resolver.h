#pragma once

#include <optional>
#include <string>

#include "domain/note_store.h"

namespace tavi {

/// Finds the note that an input identifies. Throws OperationError unless exactly one of id and
/// title is given and it is not blank; the store's errors pass through.
struct OperationNoteResolver {
  /// The id or the title that was given.
  struct Identification {
    enum class Kind { id, title };
    Kind kind;
    std::string text;  ///< as given, not trimmed
  };
  static Identification validateIdentification(const std::optional<std::string>& id,
                                               const std::optional<std::string>& title);

  /// The note's id. Returns a given id without asking the store; looks a title up, and throws
  /// `noteIsLocked` if that note is locked.
  static std::string resolveNoteID(const std::optional<std::string>& id,
                                   const std::optional<std::string>& title, NoteStore& store);

  /// The same for operations that accept locked notes.
  static std::string resolveNoteIDEvenIfLocked(const std::optional<std::string>& id,
                                               const std::optional<std::string>& title,
                                               NoteStore& store);
};

}  // namespace tavi
