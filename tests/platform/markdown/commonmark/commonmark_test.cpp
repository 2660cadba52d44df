#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/markdown/markdown_properties.h"

namespace zephyrdown {
namespace {

/// Returns the Markdown of every example: the lines between its fence and a line with a dot. The
/// file writes tabs as arrows.
std::vector<std::string> examples() {
  std::ifstream file(TAVI_COMMONMARK);
  const std::string fence(32, '`');
  std::vector<std::string> found;
  bool inside = false;
  for (std::string line; std::getline(file, line);) {
    if (line == fence + " example") {
      found.emplace_back();
      inside = true;
    } else if (line == ".") {
      inside = false;
    } else if (inside) {
      for (std::size_t at = line.find("→"); at != std::string::npos; at = line.find("→", at)) {
        line.replace(at, std::string_view("→").size(), "\t");
      }
      found.back() += line + "\n";
    }
  }
  return found;
}

TEST(CommonMark, ItsExamplesHoldTheProperties) {
  const std::vector<std::string> all = examples();
  ASSERT_GT(all.size(), 600u);
  std::string whole;
  for (const std::string& example : all) {
    checkText(example);
    whole += example + "\n";
  }
  checkText(whole);
}

}  // namespace
}  // namespace zephyrdown
