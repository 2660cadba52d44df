#include "operations/write_operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "refusal.h"
#include "support/store_test.h"

namespace tavi {
namespace {

using ::testing::ElementsAre;
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

TEST_F(WriteOperations, CreateNoteFromTextAddsTheTags) {
  const Note note = CreateNoteOp::execute({.content = "# Mars\nred", .tags = {"#a", ""}}, store());
  EXPECT_EQ(note.content, "# Mars\nred\n\n#a");
  EXPECT_THAT(note.metadata.tags, ElementsAre("a"));
}

TEST_F(WriteOperations, CreateNoteReturnsTheExistingNoteWhenAskedTo) {
  add("# Mars\nold");
  const Note note =
      CreateNoteOp::execute({.title = "mars", .content = "new", .ifNotExists = true}, store());
  EXPECT_EQ(note.content, "# Mars\nold");
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

TEST_F(WriteOperations, AppendToNoteInsertsAtEitherEnd) {
  add("# Mars\nred");
  AppendToNoteOp::execute({.id = "ID-1", .content = "dust"}, store());
  AppendToNoteOp::execute({.title = "Mars", .content = "hot", .position = "beginning"}, store());
  AppendToNoteOp::execute({.id = "ID-1", .content = "", .position = "end"}, store());
  EXPECT_EQ(text("ID-1"), "# Mars\nhot\nred\ndust");
  EXPECT_EQ(refusal([&] { AppendToNoteOp::execute({.content = "", .position = "End"}, store()); }),
            "invalid input: Invalid position: End");
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

TEST_F(WriteOperations, AWriteThatDropsAnAttachmentMustSaySo) {
  add("# Mars");
  store().addAttachment("ID-1", "bytes", "a.png");
  const std::string before = text("ID-1");
  const auto overwrite = [&](std::optional<std::vector<std::string>> expected, bool force) {
    return refusal([&] {
             OverwriteNoteOp::execute(
                 {.id = "ID-1", .content = "gone", .expectedRemovedAttachments = expected}, store(),
                 force);
           })
        .substr(0, 26);
  };
  EXPECT_EQ(overwrite({}, false), "attachment_removal_blocked");
  EXPECT_EQ(overwrite({{}}, false), "attachment_removal_blocked");
  EXPECT_EQ(overwrite({{"a.png", "b.png"}}, false), "attachment_removal_blocked");
  EXPECT_EQ(text("ID-1"), before);
  EXPECT_EQ(overwrite({{"a.png"}}, false), "");

  add("# Venus");
  store().addAttachment("ID-2", "bytes", "b.png");
  EditNoteOp::execute({.id = "ID-2", .edits = {{.find = "(b.png)", .replace = ""}}}, store(), true);
  EXPECT_TRUE(metadata("ID-2").attachments.empty());
}

TEST_F(WriteOperations, OverwriteNoteComparesTheHashWhereOneIsGiven) {
  const std::string hash = metadata(add("red")).contentHash;
  OverwriteNoteOp::execute({.id = "ID-1", .content = "1", .baseHash = hash}, store());
  EXPECT_EQ(refusal([&] {
              OverwriteNoteOp::execute({.id = "ID-1", .content = "2", .baseHash = hash}, store());
            }).substr(0, 13),
            "hash_mismatch");
  OverwriteNoteOp::execute({.id = "ID-1", .content = "3"}, store());
  EXPECT_EQ(text("ID-1"), "3");
}

}  // namespace
}  // namespace tavi
