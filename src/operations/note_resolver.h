#pragma once

#include <optional>
#include <string>

#include "domain/note_store.h"

namespace tavi {

/// Finds the note that an input identifies by exactly one of an id and a title, neither blank.
/// Throws OperationError; errors of the store for a title pass through.
struct OperationNoteResolver {
  struct Identification {
    enum class Kind { id, title };
    Kind kind;
    std::string text;  ///< as it was given, blanks and all
  };
  static Identification validateIdentification(const std::optional<std::string>& id,
                                               const std::optional<std::string>& title);

  /// The note's id. An id is returned without asking the store; a title is looked up, and refused
  /// when the note is locked.
  static std::string resolveNoteID(const std::optional<std::string>& id,
                                   const std::optional<std::string>& title, NoteStore& store);

  /// The same for operations that work on locked notes.
  static std::string resolveNoteIDEvenIfLocked(const std::optional<std::string>& id,
                                               const std::optional<std::string>& title,
                                               NoteStore& store);
};

}  // namespace tavi
