#include <gtest/gtest.h>

#include "platform/markdown/ast.h"

TEST(Markdown, IsWrittenBackAsItWasRead) {
  const std::string text("a\0\xFF\r\n# b", 8);
  EXPECT_EQ(zephyrdown::ZDKAST::fromMarkdown(text).markdown(), text);
}
