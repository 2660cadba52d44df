#include "operations/pin_operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "memory_note_store.h"
#include "refusal.h"

namespace tavi {
namespace {

using ::testing::ElementsAre;
using testing::refusal;

class PinOperations : public ::testing::Test {
 protected:
  void SetUp() override {
    store.add("Mars").metadata.locked = true;
    store.addTag("red planet");
    store.addTag("global");
  }

  testing::MemoryNoteStore store;
};

TEST_F(PinOperations, AnswerOneDifferenceOverAllTargets) {
  const auto added =
      AddPinsOp::execute({.title = "mars", .targets = {"global", "#red planet#"}}, store);
  EXPECT_THAT(*added.pins, ElementsAre("global", "#red planet#"));
  const auto again = AddPinsOp::execute({.id = "ID-1", .targets = {"global"}}, store);
  EXPECT_EQ(again.pins, std::nullopt);
  const auto removed = RemovePinsOp::execute({.id = "ID-1", .targets = {"red planet"}}, store);
  EXPECT_THAT(*removed.pins, ElementsAre("global"));
}

TEST_F(PinOperations, TheTagNamedGlobalIsNotTheGlobalPin) {
  AddPinsOp::execute({.id = "ID-1", .targets = {"#global"}}, store);
  EXPECT_THAT(ListPinsOp::execute({.id = "ID-1"}, store), ElementsAre("#global"));
}

TEST_F(PinOperations, ChangeNothingWhenOneTagIsMissing) {
  EXPECT_EQ(
      refusal([&] {
        AddPinsOp::execute({.id = "ID-1", .targets = {"global", "#a", "red planet", "b"}}, store);
      }),
      "tag_not_found: Tags not found: a, b");
  EXPECT_EQ(refusal([&] {
              RemovePinsOp::execute({.id = "ID-1", .targets = {"a", "#"}}, store);
            }),
            "invalid input: Pin target must not be empty");
  EXPECT_EQ(refusal([&] { AddPinsOp::execute({}, store); }),
            "invalid input: Provide at least one pin target (global or tag name)");
  EXPECT_TRUE(store.calls.empty());
}

TEST_F(PinOperations, ListPinsAsTheyAreShown) {
  store.find("ID-1").metadata.pins = {"", "#a", "red planet", "global"};
  EXPECT_THAT(ListPinsOp::execute({}, store),
              ElementsAre("global", "#a", "#red planet#", "global"));
}

}  // namespace
}  // namespace tavi
