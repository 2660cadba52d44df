#include "domain/store_errors.h"

#include <gtest/gtest.h>

#include <string>

namespace tavi {
namespace {

using Error = NoteStoreError;

TEST(StoreErrors, EachHasItsWordsAndItsCode) {
  struct Case {
    Error error;
    std::string_view message, code;
  };
  const Case cases[] = {
      {Error::noteNotFound("42"), "Note not found: 42", "note_not_found"},
      {Error::noNoteWithTitle("Plan"),
       "No note with title: Plan (in notes — use note ID for trash/archive)", "note_not_found"},
      {Error::titleMatchesMultiple("Plan", 3),
       "Title matches 3 notes (excluding trash/archive) — use note ID to disambiguate",
       "title_ambiguous"},
      {Error::stringNotFound("42"), "String not found in note 42", "string_not_found"},
      {Error::stringMatchesMultiple("42", 2),
       "String matches 2 locations in note 42 — provide more surrounding context in --find to "
       "disambiguate",
       "string_ambiguous"},
      {Error::attachmentNotFound("a.png"), "Attachment not found: a.png", "attachment_not_found"},
      {Error::noteIsLocked("Plan"), "Note is locked: Plan", "note_locked"},
      {Error::tagNotFound("work"), "Tag not found: work", "tag_not_found"},
      {Error::tagsNotFound({"b", "a"}), "Tags not found: b, a", "tag_not_found"},
      {Error::fileNotFound("/x {}"), "File not found: /x {}", "file_not_found"},
      {Error::storeUnavailable("No database."), "No database.", "store_unavailable"},
      {Error::renameTargetExists("work", 1),
       "Tag \"work\" already exists. Renaming would merge 1 note into it. Pass --force / "
       "force=true to proceed.",
       "conflict"},
      {Error::renameTargetExists("work", 0),
       "Tag \"work\" already exists. Renaming would merge 0 notes into it. Pass --force / "
       "force=true to proceed.",
       "conflict"},
      {Error::attachmentRemovalGateFailed({}, {"b", "a"}),
       "Write does not remove any attachments but expectedRemovedAttachments was [\"a\", \"b\"]. "
       "Drop the declaration or update it to match the actual removed set (empty).",
       "attachment_removal_blocked"},
      {Error::attachmentRemovalGateFailed({"b", "a"}, {"c"}),
       "Write would remove attachments `a`, `b` but expectedRemovedAttachments was [\"c\"]. Update "
       "the declaration to match, re-run with --force (CLI), or call delete_attachment separately.",
       "attachment_removal_blocked"},
      {Error::attachmentRemovalGateFailed({"a"}, {}),
       "Write would remove attachment `a`. Declare via expectedRemovedAttachments=[\"a\"] (MCP), "
       "re-run with --force (CLI), or call delete_attachment separately.",
       "attachment_removal_blocked"},
      {Error::hashMismatch(), "Note has changed since last read — read again before writing",
       "hash_mismatch"},
      {Error::concurrentModification(),
       "Note was modified by another process during the operation — try again",
       "concurrent_modification"},
      {Error::appLockEnabled(),
       "Tavi’s app lock is enabled; disable it in Tavi’s settings to use the CLI.",
       "app_lock_enabled"},
      {Error::batchEditFailed(0, "x", Error::stringNotFound("42")),
       "Batch edit 1 (find: \"x\"): String not found in note 42", "string_not_found"},
      {Error::batchEditFailed(
           1, "y", Error::batchEditFailed(0, "x", Error::stringMatchesMultiple("42", 5))),
       "Batch edit 2 (find: \"y\"): Batch edit 1 (find: \"x\"): String matches 5 locations in note "
       "42 — provide more surrounding context in --find to disambiguate",
       "string_ambiguous"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.error.message(), c.message);
    EXPECT_STREQ(c.error.what(), c.error.message().c_str());
    EXPECT_EQ(c.error.code(), c.code) << c.message;
  }
}

TEST(StoreErrors, ShowsAFindTextOnOneLineAndNotTooLong) {
  const auto shown = [](std::string_view find) {
    const Error error = Error::batchEditFailed(0, find, Error::storeUnavailable(""));
    constexpr std::string_view kBefore = "Batch edit 1 (find: \"";
    return error.message().substr(kBefore.size(), error.message().size() - kBefore.size() - 4);
  };
  EXPECT_EQ(shown("a\\b\n\r\t\"c\""), R"(a\\b\n\r\t\"c\")");
  EXPECT_EQ(shown(std::string(40, 'x')), std::string(40, 'x'));
  EXPECT_EQ(shown(std::string(41, 'x')), std::string(39, 'x') + "…");
  EXPECT_EQ(shown(std::string(21, '\n')).size(), 39 + std::string_view("…").size());
  std::string accents;
  for (int i = 0; i < 40; ++i) accents += "e\u0301";
  EXPECT_EQ(shown(accents), accents);  // characters are counted, not bytes
  EXPECT_EQ(shown(accents + "x"), accents.substr(0, 39 * 3) + "…");
}

TEST(StoreErrors, KnowWhetherATextWasNotFoundAtAnyDepth) {
  const Error notFound = Error::stringNotFound("42");
  EXPECT_TRUE(notFound.isStringNotFound());
  EXPECT_TRUE(
      Error::batchEditFailed(0, "", Error::batchEditFailed(0, "", notFound)).isStringNotFound());
  EXPECT_FALSE(Error::batchEditFailed(0, "", Error::hashMismatch()).isStringNotFound());
  EXPECT_EQ(notFound, Error::stringNotFound("42"));
  EXPECT_FALSE(notFound == Error::stringNotFound("43"));
}

}  // namespace
}  // namespace tavi
