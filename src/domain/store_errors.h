#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "domain/failure.h"

namespace tavi {

/// The error of the storage interface. The factory functions determine its message for users and
/// its code for programs; the command line and the MCP server show both unchanged.
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
  /// `index` counts from 0; the message counts from 1.
  static NoteStoreError batchEditFailed(std::int64_t index, std::string_view find,
                                        const NoteStoreError& underlying);
  static NoteStoreError attachmentRemovalGateFailed(const std::set<std::string>& removed,
                                                    const std::set<std::string>& expected);
  static NoteStoreError hashMismatch();
  static NoteStoreError concurrentModification();
  static NoteStoreError appLockEnabled();

  Case kind() const { return case_; }
  /// The machine-readable code, "note_not_found". A failed batch edit has the code of the failed
  /// edit's error.
  std::string_view code() const { return code_; }
  /// Whether this error, or for a batch edit the error of the failed edit, is `stringNotFound`.
  bool isStringNotFound() const;
  /// Errors are equal if case and message are.
  bool operator==(const NoteStoreError& other) const {
    return case_ == other.case_ && message() == other.message();
  }

 private:
  NoteStoreError(Case kind, std::string_view code, std::string message)
      : Failure(std::move(message)), case_(kind), code_(code) {}
  const NoteStoreError& innermost() const;

  Case case_;
  std::string_view code_;
  std::shared_ptr<const NoteStoreError> underlying_;  // null unless batchEditFailed
};

}  // namespace tavi
