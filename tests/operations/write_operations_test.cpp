#include "operations/write_operations.h"

#include <gtest/gtest.h>

#include "operations/attachment_operations.h"
#include "refusal.h"
#include "support/store_test.h"

namespace tavi {
namespace {

using testing::refusal;

using WriteOperations = StoreTest;

TEST_F(WriteOperations, CreateNoteDropsARepeatedTitleFromTheContent) {
  for (const auto& [content, text] : {
           std::pair{"Body", "# Mars\n\nBody"},
           {"# Mars\nBody", "# Mars\n\nBody"},
           {"  # mars \t\r\nBody", "# Mars\n\nBody"},
           {"# Mars\u2028Body", "# Mars\n\nBody"},
           {"# Mars\n\nBody", "# Mars\n\n\nBody"},
           {"# Mars", "# Mars"},
           {"# Mars\n", "# Mars"},
           {"## Mars\nBody", "# Mars\n\n## Mars\nBody"},
           {"# Mars 2\nBody", "# Mars\n\n# Mars 2\nBody"},
           {"\n# Mars", "# Mars\n\n\n# Mars"},
       }) {
    EXPECT_EQ(CreateNoteOp::execute({.title = "Mars", .content = content}, store()).content, text)
        << content;
  }
}

TEST_F(WriteOperations, CreateNoteWantsATitleOrAText) {
  for (const auto& [input, message] : {
           std::pair{CreateNoteInput{}, "Provide a title, content, or both"},
           {CreateNoteInput{.ifNotExists = true}, "Provide a title, content, or both"},
           {CreateNoteInput{.content = " \n"}, "Provide a title, content, or both"},
           {CreateNoteInput{.content = "x", .ifNotExists = true}, "ifNotExists requires a title"},
           {CreateNoteInput{.title = " ", .content = "x"}, "Title must not be empty"},
       }) {
    EXPECT_EQ(refusal([&, &input = input] { CreateNoteOp::execute(input, store()); }),
              std::string("invalid input: ") + message);
  }
  EXPECT_EQ(value("SELECT count(*) FROM note"), "0");
}

TEST_F(WriteOperations, EditNoteAppliesOneEditPlainAndSeveralAsABatch) {
  add("red planet");
  const NoteEdit missing{.find = "blue", .replace = ""};
  const NoteEdit red{.find = "red", .replace = "rusty"};
  EXPECT_EQ(refusal([&] { EditNoteOp::execute({.id = "ID-1", .edits = {missing}}, store()); }),
            "string_not_found: String not found in note ID-1");
  EXPECT_EQ(refusal([&] {
              EditNoteOp::execute({.id = "ID-1", .edits = {red, missing}}, store());
            }),
            "string_not_found: Batch edit 2 (find: \"blue\"): String not found in note ID-1");
  EXPECT_EQ(text("ID-1"), "red planet");

  const auto response =
      EditNoteOp::execute({.id = "ID-1",
                           .edits = {red,
                                     {.find = "PLANET", .insertAfter = "!", .ignoreCase = true},
                                     {.find = "t", .insertBefore = "-", .all = true}}},
                          store());
  EXPECT_EQ(text("ID-1"), "rus-ty plane-t!");
  EXPECT_EQ(response.contentLength, 15);
  EXPECT_EQ(response.id, std::nullopt);
}

TEST_F(WriteOperations, EditNoteChecksEveryEditBeforeAnythingElse) {
  const NoteEdit good{.find = "a", .replace = ""};
  EXPECT_EQ(refusal([&] { EditNoteOp::execute({}, store()); }),
            "invalid input: At least one edit is required");
  EXPECT_EQ(refusal([&] {
              EditNoteOp::execute({.edits = {good, {.find = "", .replace = "", .insertAfter = ""}}},
                                  store());
            }),
            "invalid input: Edit 1: replace, insertAfter, and insertBefore are mutually exclusive");
  EXPECT_EQ(refusal([&] {
              EditNoteOp::execute({.edits = {{.find = "a"}, good}}, store());
            }),
            "invalid input: Edit 0: one of replace, insertAfter, or insertBefore is required");
  EXPECT_EQ(refusal([&] { EditNoteOp::execute({.edits = {good}}, store()); }),
            "invalid input: Note ID or title is required");
}

TEST_F(WriteOperations, AddAttachmentWantsBytesBeforeItLooksForTheNote) {
  EXPECT_EQ(refusal([&] { AddAttachmentOp::execute({.filename = "a"}, store()); }),
            "invalid input: Attachment data is empty");
}

}  // namespace
}  // namespace tavi
