#include "operations/tag_operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "refusal.h"
#include "support/store_test.h"

namespace tavi {
namespace {

using ::testing::ElementsAre;
using testing::refusal;

class TagOperations : public StoreTest {
 protected:
  TagOperations() {
    add("# Mars\n#planet #red");
    add("# Venus\n#planet");
  }
  std::string rename(const std::string& from, const std::string& to, bool force = false) {
    return refusal(
        [&] { RenameTagOp::execute({.oldName = from, .newName = to, .force = force}, store()); });
  }
};

TEST_F(TagOperations, AddAndRemoveCheckTheNamesBeforeTheNote) {
  EXPECT_EQ(refusal([&] { AddTagsOp::execute({}, store()); }),
            "invalid input: Provide at least one tag");
  EXPECT_EQ(refusal([&] {
              RemoveTagsOp::execute({.tags = {"red", "#"}}, store());
            }),
            "invalid input: Tag name must not be empty");
}

TEST_F(TagOperations, NameTheSignThatKeepsATagFromBeingWritten) {
  for (const auto& [tag, fault] : {std::pair{"a#b", " must not contain '#': a#b"},
                                   {" ##a`b#", " must not contain '`': a`b"},
                                   {"\na\nb", " must not contain a line break: a\nb"},
                                   {"!", " cannot be written as a hashtag: !"},
                                   {" #/# ", " must not be empty"}}) {
    EXPECT_EQ(
        refusal([&, name = tag] { AddTagsOp::execute({.id = "ID-2", .tags = {name}}, store()); }),
        std::string("invalid input: Tag name") + fault);
    EXPECT_EQ(rename("red", tag), std::string("invalid input: New") + fault);
  }
}

TEST_F(TagOperations, RenameRefusesToMergeUnlessForced) {
  EXPECT_EQ(rename("planet", " #red"),
            "conflict: Tag \"red\" already exists. Renaming would merge 2 notes into it. "
            "Pass --force / force=true to proceed.");
  EXPECT_EQ(text("ID-2"), "# Venus\n#planet");
  EXPECT_EQ(RenameTagOp::execute({.oldName = "planet", .newName = "red", .force = true}, store()),
            2);
}

TEST_F(TagOperations, RenameGoesAheadWhereNothingIsMerged) {
  EXPECT_EQ(rename("red", "#red"), "");  // onto itself
  EXPECT_EQ(rename("none", "red"), "");  // there is no such tag
  EXPECT_EQ(rename("red", "Red"), "");
  EXPECT_EQ(text("ID-1"), "# Mars\n#planet #Red");
}

}  // namespace
}  // namespace tavi
