#include "domain/store_errors.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/text/characters.h"
#include "platform/text/ordering.h"

namespace tavi {
namespace {

constexpr std::size_t kLongestDisplay = 40;  // characters

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '\\':
        result += "\\\\";
        break;
      case '\n':
        result += "\\n";
        break;
      case '\r':
        result += "\\r";
        break;
      case '\t':
        result += "\\t";
        break;
      case '"':
        result += "\\\"";
        break;
      default:
        result += c;
    }
  }
  return result;
}

/// A text escaped for display between double quotes on one line, shortened if it is long.
std::string displayForm(std::string_view text) {
  using platform::text::stepForwardCharacters;
  std::string result = escaped(text);
  if (stepForwardCharacters(result, 0, kLongestDisplay) == result.size()) return result;
  result.resize(stepForwardCharacters(result, 0, kLongestDisplay - 1));
  return result + "…";
}

/// The quoted names in ascending order, separated by commas.
std::string list(const std::set<std::string>& names, std::string_view quote) {
  std::vector<std::string> sorted(names.begin(), names.end());
  std::sort(sorted.begin(), sorted.end(), platform::text::CodePointLess());
  for (std::string& name : sorted) name = fmt::format("{0}{1}{0}", quote, name);
  return fmt::format("{}", fmt::join(sorted, ", "));
}

std::string gateMessage(const std::set<std::string>& removed,
                        const std::set<std::string>& expected) {
  if (removed.empty()) {
    return fmt::format(
        "Write does not remove any attachments but expectedRemovedAttachments was [{}]. Drop the "
        "declaration or update it to match the actual removed set (empty).",
        list(expected, "\""));
  }
  const std::string write =
      fmt::format("Write would remove {} {}", removed.size() == 1 ? "attachment" : "attachments",
                  list(removed, "`"));
  if (expected.empty()) {
    return fmt::format(
        "{}. Declare via expectedRemovedAttachments=[{}] (MCP), re-run with --force (CLI), or call "
        "delete_attachment separately.",
        write, list(removed, "\""));
  }
  return fmt::format(
      "{} but expectedRemovedAttachments was [{}]. Update the declaration to match, re-run with "
      "--force (CLI), or call delete_attachment separately.",
      write, list(expected, "\""));
}

}  // namespace

NoteStoreError NoteStoreError::noteNotFound(std::string_view id) {
  return {Case::noteNotFound, "note_not_found", fmt::format("Note not found: {}", id)};
}

NoteStoreError NoteStoreError::noNoteWithTitle(std::string_view title) {
  return {Case::noNoteWithTitle, "note_not_found",
          fmt::format("No note with title: {} (in notes — use note ID for trash/archive)", title)};
}

NoteStoreError NoteStoreError::titleMatchesMultiple(std::string_view /*title*/,
                                                    std::int64_t count) {
  return {Case::titleMatchesMultiple, "title_ambiguous",
          fmt::format("Title matches {} notes (excluding trash/archive) — use note ID to "
                      "disambiguate",
                      count)};
}

NoteStoreError NoteStoreError::stringNotFound(std::string_view noteID) {
  return {Case::stringNotFound, "string_not_found",
          fmt::format("String not found in note {}", noteID)};
}

NoteStoreError NoteStoreError::stringMatchesMultiple(std::string_view noteID, std::int64_t count) {
  return {Case::stringMatchesMultiple, "string_ambiguous",
          fmt::format("String matches {} locations in note {} — provide more surrounding context "
                      "in --find to disambiguate",
                      count, noteID)};
}

NoteStoreError NoteStoreError::attachmentNotFound(std::string_view filename) {
  return {Case::attachmentNotFound, "attachment_not_found",
          fmt::format("Attachment not found: {}", filename)};
}

NoteStoreError NoteStoreError::noteIsLocked(std::string_view idOrTitle) {
  return {Case::noteIsLocked, "note_locked", fmt::format("Note is locked: {}", idOrTitle)};
}

NoteStoreError NoteStoreError::tagNotFound(std::string_view name) {
  return {Case::tagNotFound, "tag_not_found", fmt::format("Tag not found: {}", name)};
}

NoteStoreError NoteStoreError::tagsNotFound(const std::vector<std::string>& names) {
  return {Case::tagsNotFound, "tag_not_found",
          fmt::format("Tags not found: {}", fmt::join(names, ", "))};
}

NoteStoreError NoteStoreError::fileNotFound(std::string_view path) {
  return {Case::fileNotFound, "file_not_found", fmt::format("File not found: {}", path)};
}

NoteStoreError NoteStoreError::storeUnavailable(std::string_view message) {
  return {Case::storeUnavailable, "store_unavailable", std::string(message)};
}

NoteStoreError NoteStoreError::renameTargetExists(std::string_view newName,
                                                  std::int64_t mergeCount) {
  return {Case::renameTargetExists, "conflict",
          fmt::format("Tag \"{}\" already exists. Renaming would merge {} {} into it. Pass --force "
                      "/ force=true to proceed.",
                      newName, mergeCount, mergeCount == 1 ? "note" : "notes")};
}

NoteStoreError NoteStoreError::batchEditFailed(std::int64_t index, std::string_view find,
                                               const NoteStoreError& underlying) {
  NoteStoreError error(Case::batchEditFailed, underlying.code(),
                       fmt::format("Batch edit {} (find: \"{}\"): {}", index + 1, displayForm(find),
                                   underlying.message()));
  error.underlying_ = std::make_shared<NoteStoreError>(underlying);
  return error;
}

NoteStoreError NoteStoreError::attachmentRemovalGateFailed(const std::set<std::string>& removed,
                                                           const std::set<std::string>& expected) {
  return {Case::attachmentRemovalGateFailed, "attachment_removal_blocked",
          gateMessage(removed, expected)};
}

NoteStoreError NoteStoreError::hashMismatch() {
  return {Case::hashMismatch, "hash_mismatch",
          "Note has changed since last read — read again before writing"};
}

NoteStoreError NoteStoreError::concurrentModification() {
  return {Case::concurrentModification, "concurrent_modification",
          "Note was modified by another process during the operation — try again"};
}

NoteStoreError NoteStoreError::appLockEnabled() {
  return {Case::appLockEnabled, "app_lock_enabled",
          "Tavi’s app lock is enabled; disable it in Tavi’s settings to use the CLI."};
}

bool NoteStoreError::isStringNotFound() const {
  return innermost().case_ == Case::stringNotFound;
}

const NoteStoreError& NoteStoreError::innermost() const {
  const NoteStoreError* error = this;
  while (error->underlying_ != nullptr) error = error->underlying_.get();
  return *error;
}

}  // namespace tavi
