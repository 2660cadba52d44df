#include "vault/names.h"

#include <gtest/gtest.h>

namespace tavi::vault {
namespace {

TEST(FileNames, AreWhatAPersonWouldCallTheFile) {
  const std::pair<std::string, std::string> names[] = {{"Shopping", "Shopping"},
                                                       {"A/B: \"draft\"?", "A-B- draft"},
                                                       {"  tab\there\n", "tab here"},
                                                       {"...hidden.", "hidden"},
                                                       {"../../etc/passwd", "-..-etc-passwd"},
                                                       {"", "Untitled"},
                                                       {"con", "con_"},
                                                       {"COM1.txt", "COM1.txt_"},
                                                       {"e\u0301t\u00E9", "\u00E9t\u00E9"},
                                                       {"a\u202Eb\x1B[31m", "a b [31m"}};
  for (const auto& [title, name] : names) EXPECT_EQ(fileNameForTitle(title), name) << title;
  std::string family;
  for (int i = 0; i < 50; ++i) family += "👨‍👩‍👧";
  EXPECT_EQ(fileNameForTitle(family).size(), 108U) << "cut between characters";
}

TEST(FileNames, GiveIdsThatFollowFromThem) {
  EXPECT_EQ(uuidOf("/notes/a.md"), uuidOf("/notes/a.md"));
  EXPECT_NE(uuidOf("/notes/a.md"), uuidOf("/notes/b.md"));
  EXPECT_TRUE(isUUID(uuidOf("")));
  EXPECT_FALSE(isUUID("202401011200"));
}

}  // namespace
}  // namespace tavi::vault
