#include "operations/write_operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "memory_note_store.h"
#include "refusal.h"

namespace tavi {
namespace {

using ::testing::ElementsAre;
using testing::refusal;

class WriteOperations : public ::testing::Test {
 protected:
  std::string textOf(const std::string& id) { return store.find(id).content; }

  testing::MemoryNoteStore store;
};

TEST_F(WriteOperations, CreateNoteDropsARepeatedTitleFromTheContent) {
  for (const auto& [content, text] : {
           std::pair{"Body", "# Mars\nBody"},
           {"# Mars\nBody", "# Mars\nBody"},
           {"  # mars \t\r\nBody", "# Mars\nBody"},
           {"# Mars\u2028Body", "# Mars\nBody"},
           {"# Mars\n\nBody", "# Mars\n\nBody"},
           {"# Mars", "# Mars"},
           {"# Mars\n", "# Mars"},
           {"## Mars\nBody", "# Mars\n## Mars\nBody"},
           {"# Mars 2\nBody", "# Mars\n# Mars 2\nBody"},
           {"\n# Mars", "# Mars\n\n# Mars"},
       }) {
    EXPECT_EQ(CreateNoteOp::execute({.title = "Mars", .content = content}, store).content, text)
        << content;
  }
}

TEST_F(WriteOperations, CreateNoteFromTextTakesItAsItIs) {
  const Note note = CreateNoteOp::execute({.content = "# Mars\nred", .tags = {"#a", ""}}, store);
  EXPECT_EQ(note.content, "# Mars\nred");
  EXPECT_THAT(note.metadata.tags, ElementsAre("#a", ""));
  EXPECT_THAT(store.calls, ElementsAre("createNoteFromText"));
}

TEST_F(WriteOperations, CreateNoteReturnsTheExistingNoteWhenAskedTo) {
  store.add("Mars", "old");
  const Note note =
      CreateNoteOp::execute({.title = "mars", .content = "new", .ifNotExists = true}, store);
  EXPECT_EQ(note.content, "old");
  EXPECT_THAT(store.calls, ElementsAre("createNoteIfAbsent"));
}

TEST_F(WriteOperations, CreateNoteWantsATitleOrAText) {
  for (const auto& [input, message] : {
           std::pair{CreateNoteInput{}, "Provide a title, content, or both"},
           {CreateNoteInput{.ifNotExists = true}, "Provide a title, content, or both"},
           {CreateNoteInput{.content = " \n"}, "Provide a title, content, or both"},
           {CreateNoteInput{.content = "x", .ifNotExists = true}, "ifNotExists requires a title"},
           {CreateNoteInput{.title = " ", .content = "x"}, "Title must not be empty"},
       }) {
    EXPECT_EQ(refusal([&, &input = input] { CreateNoteOp::execute(input, store); }),
              std::string("invalid input: ") + message);
  }
  EXPECT_TRUE(store.calls.empty());
}

TEST_F(WriteOperations, AppendToNoteInsertsAtEitherEnd) {
  store.add("Mars", "red");
  AppendToNoteOp::execute({.id = "ID-1", .content = "!"}, store);
  AppendToNoteOp::execute({.title = "Mars", .content = "very ", .position = "beginning"}, store);
  AppendToNoteOp::execute({.id = "ID-1", .content = "", .position = "end"}, store);
  EXPECT_EQ(textOf("ID-1"), "very red!");
  EXPECT_EQ(refusal([&] { AppendToNoteOp::execute({.content = "", .position = "End"}, store); }),
            "invalid input: Invalid position: End");
}

TEST_F(WriteOperations, EditNoteAppliesOneEditPlainAndSeveralAsABatch) {
  store.add("Mars", "red planet");
  const NoteEdit missing{.find = "blue", .replace = ""};
  const NoteEdit red{.find = "red", .replace = "rusty"};
  EXPECT_EQ(refusal([&] { EditNoteOp::execute({.id = "ID-1", .edits = {missing}}, store); }),
            "string_not_found: String not found in note ID-1");
  EXPECT_EQ(refusal([&] {
              EditNoteOp::execute({.id = "ID-1", .edits = {red, missing}}, store);
            }),
            "string_not_found: Batch edit 2 (find: \"blue\"): String not found in note ID-1");
  EXPECT_EQ(textOf("ID-1"), "red planet");

  const auto response =
      EditNoteOp::execute({.id = "ID-1",
                           .edits = {red,
                                     {.find = "PLANET", .insertAfter = "!", .ignoreCase = true},
                                     {.find = "t", .insertBefore = "-", .all = true}}},
                          store);
  EXPECT_EQ(textOf("ID-1"), "rus-ty plane-t!");
  EXPECT_EQ(response.contentLength, 15);
  EXPECT_EQ(response.id, std::nullopt);
}

TEST_F(WriteOperations, EditNoteChecksEveryEditBeforeAnythingElse) {
  const NoteEdit good{.find = "a", .replace = ""};
  EXPECT_EQ(refusal([&] { EditNoteOp::execute({}, store); }),
            "invalid input: At least one edit is required");
  EXPECT_EQ(refusal([&] {
              EditNoteOp::execute({.edits = {good, {.find = "", .replace = "", .insertAfter = ""}}},
                                  store);
            }),
            "invalid input: Edit 1: replace, insertAfter, and insertBefore are mutually exclusive");
  EXPECT_EQ(refusal([&] {
              EditNoteOp::execute({.edits = {{.find = "a"}, good}}, store);
            }),
            "invalid input: Edit 0: one of replace, insertAfter, or insertBefore is required");
  EXPECT_EQ(refusal([&] { EditNoteOp::execute({.edits = {good}}, store); }),
            "invalid input: Note ID or title is required");
}

TEST_F(WriteOperations, AWriteThatDropsAnAttachmentMustSaySo) {
  store.add("Mars", "see a.png").files = {{"a.png", "bytes"}};
  const auto overwrite = [&](std::optional<std::vector<std::string>> expected, bool force) {
    return refusal([&] {
             OverwriteNoteOp::execute(
                 {.id = "ID-1", .content = "gone", .expectedRemovedAttachments = expected}, store,
                 force);
           })
        .substr(0, 26);
  };
  EXPECT_EQ(overwrite({}, false), "attachment_removal_blocked");
  EXPECT_EQ(overwrite({{}}, false), "attachment_removal_blocked");
  EXPECT_EQ(overwrite({{"a.png", "b.png"}}, false), "attachment_removal_blocked");
  EXPECT_EQ(textOf("ID-1"), "see a.png");
  EXPECT_EQ(overwrite({{"a.png"}}, false), "");

  store.add("Venus", "see b.png").files = {{"b.png", "bytes"}};
  EditNoteOp::execute({.id = "ID-2", .edits = {{.find = "b.png", .replace = ""}}}, store, true);
  EXPECT_EQ(textOf("ID-2"), "see ");
}

TEST_F(WriteOperations, OverwriteNoteComparesTheHashWhereOneIsGiven) {
  const std::string hash = store.add("Mars", "red").metadata.contentHash;
  OverwriteNoteOp::execute({.id = "ID-1", .content = "1", .baseHash = hash}, store);
  EXPECT_EQ(refusal([&] {
              OverwriteNoteOp::execute({.id = "ID-1", .content = "2", .baseHash = hash}, store);
            }).substr(0, 13),
            "hash_mismatch");
  OverwriteNoteOp::execute({.id = "ID-1", .content = "3"}, store);
  EXPECT_EQ(textOf("ID-1"), "3");
}

}  // namespace
}  // namespace tavi
