#include "operations/note_resolver.h"

#include <gtest/gtest.h>

#include "memory_note_store.h"
#include "refusal.h"

namespace tavi {
namespace {

using testing::MemoryNoteStore;
using testing::refusal;
using Resolver = OperationNoteResolver;
using Text = std::optional<std::string>;

TEST(NoteResolver, WantsExactlyOneIdentificationThatIsNotBlank) {
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

TEST(NoteResolver, HandsAnIdOnAsItIsWithoutAskingTheStore) {
  MemoryNoteStore store;
  EXPECT_EQ(Resolver::resolveNoteID(" no such ", {}, store), " no such ");
  EXPECT_TRUE(store.calls.empty());
}

TEST(NoteResolver, LooksATitleUpAsTheOperationTreatsLockedNotes) {
  MemoryNoteStore store;
  store.add("Mars").metadata.locked = true;
  EXPECT_EQ(refusal([&] { Resolver::resolveNoteID({}, "mars", store); }),
            "note_locked: Note is locked: mars");
  EXPECT_EQ(Resolver::resolveNoteIDEvenIfLocked({}, "mars", store), "ID-1");
}

}  // namespace
}  // namespace tavi
