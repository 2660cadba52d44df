#include <gtest/gtest.h>

#include "domain/content_hash.h"
#include "domain/tag_parser.h"

namespace tavi {
namespace {

TEST(ContentHash, IsTheHeadOfTheDigestOfTheBytes) {
  EXPECT_EQ(ContentHash::of(""), "e3b0c44");
  EXPECT_EQ(ContentHash::of("abc"), "ba7816b");
  EXPECT_NE(ContentHash::of("a\n"), ContentHash::of("a\r\n"));
  EXPECT_NE(ContentHash::of("\u00E9"), ContentHash::of("e\u0301"));
}

TEST(TagParser, GivesTheTwoFormsOfATag) {
  EXPECT_EQ(TagParser::canonicalName(" #work/draft "), "work/draft");
  EXPECT_EQ(TagParser::canonicalName("#multi word#"), "multi word");
  EXPECT_EQ(TagParser::canonicalName(" ## "), "");
  EXPECT_EQ(TagParser::writtenForm("nested/child"), "#nested/child");
  EXPECT_EQ(TagParser::writtenForm("multi word"), "#multi word#");
  EXPECT_EQ(TagParser::writtenForm("line\nbreak"), std::nullopt);
}

}  // namespace
}  // namespace tavi
