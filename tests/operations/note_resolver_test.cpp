#include "operations/note_resolver.h"

#include <gtest/gtest.h>

#include "refusal.h"
#include "support/store_test.h"

namespace tavi {
namespace {

using testing::refusal;
using Resolver = OperationNoteResolver;
using Text = std::optional<std::string>;
using NoteResolver = StoreTest;

TEST_F(NoteResolver, WantsExactlyOneIdentificationThatIsNotBlank) {
  for (const auto& [id, title, message] : {
           std::tuple{Text(""), Text("Mars"), "Provide note ID or title, not both"},
           {Text(), Text(), "Note ID or title is required"},
           {Text(" \n"), Text(), "Note ID must not be empty"},
           {Text(), Text("\t"), "Note title must not be empty"},
       }) {
    EXPECT_EQ(refusal([&id = id, &title = title] { Resolver::validateIdentification(id, title); }),
              std::string("invalid input: ") + message);
  }
}

TEST_F(NoteResolver, LooksATitleUpAsTheOperationTreatsLockedNotes) {
  lock(add("# Mars"));
  EXPECT_EQ(refusal([&] { Resolver::resolveNoteID({}, "mars", store()); }),
            "note_locked: Note is locked: mars");
  EXPECT_EQ(Resolver::resolveNoteIDEvenIfLocked({}, "mars", store()), "ID-1");
}

}  // namespace
}  // namespace tavi
