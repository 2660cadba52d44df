#include "operations/read_operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "refusal.h"
#include "support/store_test.h"

namespace tavi {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::refusal;

class ReadOperations : public StoreTest {
 protected:
  /// The titles of a list that came without content.
  static std::vector<std::string> titles(const ListNotesOp::Output& output) {
    std::vector<std::string> titles;
    std::get<RecordList<NoteMetadata>>(output)->forEach(
        [&](const NoteMetadata& note) { titles.push_back(note.title); });
    return titles;
  }
  std::vector<std::string> listed(const ListNotesInput& input) {
    return titles(ListNotesOp::execute(input, store()));
  }
};

TEST_F(ReadOperations, GetNoteReadsTheTextOnlyWhenAsked) {
  lock(add("# Mars"));
  EXPECT_TRUE(std::get<NoteMetadata>(GetNoteOp::execute({.title = "mars"}, store())).locked);
  EXPECT_EQ(
      refusal([&] { GetNoteOp::execute({.title = "mars", .includeContent = true}, store()); }),
      "note_locked: Note is locked: mars");

  otherProgram("UPDATE note SET encrypted = 0");
  const auto output = GetNoteOp::execute({.id = "ID-1", .includeContent = true}, store());
  EXPECT_EQ(std::get<Note>(output).content, "# Mars");
}

TEST_F(ReadOperations, ReadNoteContentGivesBytesOrNothingWhereACharacterWouldBeCut) {
  add("αβ!");
  using Number = std::optional<std::int64_t>;
  for (const auto& [offset, limit, expected] : {
           std::tuple{Number(), Number(), "αβ!"},
           {Number(2), Number(2), "β"},
           {Number(2), Number(), "β!"},
           {Number(), Number(2), "α"},
           {Number(0), Number(1), ""},  // ends inside a character
           {Number(1), Number(3), ""},  // begins inside one
           {Number(0), Number(0), ""},
           {Number(5), Number(), ""},    // at the end
           {Number(99), Number(1), ""},  // behind it
           {Number(4), Number(INT64_MAX), "!"},
       }) {
    EXPECT_EQ(ReadNoteContentOp::execute({.id = "ID-1", .offset = offset, .limit = limit}, store()),
              expected);
  }
}

TEST_F(ReadOperations, ReadNoteContentChecksItsNumbersFirst) {
  EXPECT_EQ(refusal([&] { ReadNoteContentOp::execute({.offset = -1, .limit = -1}, store()); }),
            "invalid input: Offset must be non-negative");
  EXPECT_EQ(refusal([&] { ReadNoteContentOp::execute({.limit = -1}, store()); }),
            "invalid input: Limit must be non-negative");
}

TEST_F(ReadOperations, ListNotesChecksInOrder) {
  for (const auto& [input, message] : {
           std::pair{ListNotesInput{.sort = "size", .limit = -1},
                     "invalid sort field: size (valid: "
                     "pinned, modified, created, title)"},
           {ListNotesInput{.limit = -1, .offset = -1}, "Limit must be non-negative"},
           {ListNotesInput{.offset = -1, .location = "All"}, "Offset must be non-negative"},
           {ListNotesInput{.location = "All", .tag = ""}, "Invalid location: All"},
           {ListNotesInput{.limit = 0, .tag = " # "}, "tag must not be empty"},
       }) {
    EXPECT_EQ(refusal([&, &input = input] { ListNotesOp::execute(input, store()); }),
              std::string("invalid input: ") + message);
  }
}

TEST_F(ReadOperations, ALimitOfZeroFindsNothingAndAsksNothing) {
  add("# Mars\n#work x");
  EXPECT_THAT(listed({.limit = 0}), IsEmpty());
  EXPECT_THAT(listed({.limit = 0, .tag = "work"}), IsEmpty());
  // The store would refuse this query, and this note.
  const auto results = SearchNotesOp::execute({.query = "@nosuch", .limit = 0}, store());
  EXPECT_EQ(std::get<RecordList<SearchResult>>(results)->count(), 0);
  EXPECT_THAT(SearchInNoteOp::execute({.id = "none", .string = "x", .limit = 0}, store()),
              IsEmpty());
}

TEST_F(ReadOperations, SearchInNoteChecksItsNumbersFirst) {
  add("red, Red");
  EXPECT_EQ(SearchInNoteOp::execute({.id = "ID-1", .string = "red"}, store()).size(), 2U);
  EXPECT_THAT(SearchInNoteOp::execute({.id = "ID-1", .string = ""}, store()), IsEmpty());
  EXPECT_EQ(refusal([&] { SearchInNoteOp::execute({.context = -1, .limit = -1}, store()); }),
            "invalid input: Limit must be non-negative");
  EXPECT_EQ(refusal([&] { SearchInNoteOp::execute({.context = -1}, store()); }),
            "invalid input: Context must be non-negative");
}

}  // namespace
}  // namespace tavi
