#include "operations/pin_operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "refusal.h"
#include "support/store_test.h"

namespace tavi {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::refusal;

class PinOperations : public StoreTest {
 protected:
  PinOperations() {
    lock(add("# Mars"));
    add("# Venus", {"red planet", "global"});
  }
  Texts pins() { return ListPinsOp::execute({.id = "ID-1"}, store()); }
};

TEST_F(PinOperations, AnswerOneDifferenceOverAllTargets) {
  const auto added =
      AddPinsOp::execute({.title = "mars", .targets = {"global", "#red planet#"}}, store());
  EXPECT_THAT(*added.pins, ElementsAre("global", "#red planet#"));
  const auto again = AddPinsOp::execute({.id = "ID-1", .targets = {"global"}}, store());
  EXPECT_EQ(again.pins, std::nullopt);
  const auto removed = RemovePinsOp::execute({.id = "ID-1", .targets = {"red planet"}}, store());
  EXPECT_THAT(*removed.pins, ElementsAre("global"));
}

TEST_F(PinOperations, TheTagNamedGlobalIsNotTheGlobalPin) {
  AddPinsOp::execute({.id = "ID-1", .targets = {"#global"}}, store());
  EXPECT_THAT(pins(), ElementsAre("#global"));
  AddPinsOp::execute({.id = "ID-2", .targets = {"global", "red planet"}}, store());
  EXPECT_THAT(ListPinsOp::execute({}, store()), ElementsAre("global", "#global", "#red planet#"));
}

TEST_F(PinOperations, ChangeNothingWhenOneTagIsMissing) {
  const auto add = [&](const Texts& targets) {
    return refusal([&] { AddPinsOp::execute({.id = "ID-1", .targets = targets}, store()); });
  };
  EXPECT_EQ(add({"global", "#a", "red planet", "b"}), "tag_not_found: Tags not found: a, b");
  EXPECT_EQ(add({"global", "#"}), "invalid input: Pin target must not be empty");
  EXPECT_THAT(pins(), IsEmpty());
  EXPECT_EQ(refusal([&] { AddPinsOp::execute({}, store()); }),
            "invalid input: Provide at least one pin target (global or tag name)");
}

TEST(DisplayedPin, IsAHashtagOrGlobal) {
  for (const auto& [pin, shown] : {std::pair{"", "global"},
                                   {"global", "global"},
                                   {"#a", "#a"},
                                   {"red planet", "#red planet#"}})
    EXPECT_EQ(displayedPin(pin), shown);
}

}  // namespace
}  // namespace tavi
