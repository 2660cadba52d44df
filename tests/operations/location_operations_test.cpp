#include "operations/location_operations.h"

#include <gtest/gtest.h>

#include "refusal.h"
#include "support/store_test.h"

namespace tavi {
namespace {

using testing::refusal;

class LocationOperations : public StoreTest {
 protected:
  std::string openedURL(const OpenNoteInput& input) {
    std::string opened;
    OpenNoteOp::execute(input, store(), [&](const std::string& url) {
      opened = url;
      return true;
    });
    return opened;
  }
};

TEST_F(LocationOperations, OpenNamesTheNoteAndWhatToDo) {
  lock(add("# Mars"));
  const std::string base = "tavi://x-callback-url/open-note?id=";
  EXPECT_EQ(openedURL({.title = "mars"}), base + "ID-1");
  EXPECT_EQ(openedURL({.id = "no such/note?"}), base + "no%20such/note?");
  EXPECT_EQ(openedURL({.id = "A", .header = ""}), base + "A");
  EXPECT_EQ(openedURL({.id = "A", .header = "Q&A = 100% é#+;"}),
            base + "A&header=Q%26A%20%3D%20100%25%20%C3%A9%23%2B%3B");
  EXPECT_EQ(
      openedURL({.id = "A", .header = "x", .edit = true, .newWindow = true, .floating = true}),
      base + "A&header=x&edit=yes&new_window=yes&float=yes");
}

TEST_F(LocationOperations, OpenFailsWhenNobodyTakesTheURL) {
  const auto refuse = [](const std::string&) { return false; };
  EXPECT_EQ(refusal([&] { OpenNoteOp::execute({.id = "A"}, store(), refuse); }),
            "store_unavailable: Could not open Tavi. Is the app installed?");
  EXPECT_EQ(refusal([&] { OpenNoteOp::execute({.id = "A", .header = "\xff"}, store(), refuse); }),
            "invalid input: Could not construct open-note URL");
}

}  // namespace
}  // namespace tavi
