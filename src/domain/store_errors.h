#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "domain/failure.h"

namespace tavi {

/// The one error of the storage interface. Every value has a fixed message and a fixed machine
/// code; both faces print them as they stand. Made by the functions below the class.
class NoteStoreError : public Failure {
 public:
  enum class Case {
    noteNotFound,
    noNoteWithTitle,
    titleMatchesMultiple,
    stringNotFound,
    stringMatchesMultiple,
    attachmentNotFound,
    noteIsLocked,
    tagNotFound,
    tagsNotFound,
    fileNotFound,
    storeUnavailable,
    renameTargetExists,
    batchEditFailed,
    attachmentRemovalGateFailed,
    hashMismatch,
    concurrentModification,
    appLockEnabled,
  };

  static NoteStoreError noteNotFound(std::string_view id);
  static NoteStoreError noNoteWithTitle(std::string_view title);
  static NoteStoreError titleMatchesMultiple(std::string_view title, std::int64_t count);
  static NoteStoreError stringNotFound(std::string_view noteID);
  static NoteStoreError stringMatchesMultiple(std::string_view noteID, std::int64_t count);
  static NoteStoreError attachmentNotFound(std::string_view filename);
  static NoteStoreError noteIsLocked(std::string_view idOrTitle);
  static NoteStoreError tagNotFound(std::string_view name);
  static NoteStoreError tagsNotFound(const std::vector<std::string>& names);
  static NoteStoreError fileNotFound(std::string_view path);
  static NoteStoreError storeUnavailable(std::string_view message);
  static NoteStoreError renameTargetExists(std::string_view newName, std::int64_t mergeCount);
  /// `index` counts from 0, the message from 1.
  static NoteStoreError batchEditFailed(std::int64_t index, std::string_view find,
                                        const NoteStoreError& underlying);
  static NoteStoreError attachmentRemovalGateFailed(const std::set<std::string>& removed,
                                                    const std::set<std::string>& expected);
  static NoteStoreError hashMismatch();
  static NoteStoreError concurrentModification();
  static NoteStoreError appLockEnabled();

  Case kind() const { return case_; }
  /// Such as "note_not_found". A failed batch edit has the code of the edit's own error.
  std::string_view code() const { return code_; }
  /// Whether this, or the innermost error of a batch edit, is `stringNotFound`.
  bool isStringNotFound() const;
  /// The same case with the same words.
  bool operator==(const NoteStoreError& other) const {
    return case_ == other.case_ && message() == other.message();
  }

 private:
  NoteStoreError(Case kind, std::string_view code, std::string message)
      : Failure(std::move(message)), case_(kind), code_(code) {}
  const NoteStoreError& innermost() const;

  Case case_;
  std::string_view code_;
  std::shared_ptr<const NoteStoreError> underlying_;  // of batchEditFailed only
};

}  // namespace tavi
