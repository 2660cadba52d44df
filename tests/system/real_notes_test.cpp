#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "support/program.h"
#include "support/throwaway_home.h"

// Stores and searches real Markdown files with the built program, and compares the results with
// calculations that share no code with it.

namespace {

namespace fs = std::filesystem;
using support::runProgram;

std::string contents(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The Markdown files of the package that scripts/setup unpacks, and the project's own.
std::vector<std::string> foundTexts() {
  std::vector<std::string> texts;
  for (const char* root : {TAVI_MARKDOWN_PACKAGE, TAVI_DOCS})
    for (const auto& entry : fs::recursive_directory_iterator(root))
      if (entry.path().extension() == ".md") texts.push_back(contents(entry.path()));
  return texts;
}

std::string lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

/// The title, if it is beyond doubt: the text begins with a plain heading.
std::string plainTitle(const std::string& text) {
  std::smatch match;
  static const std::regex heading("# ([A-Za-z0-9][A-Za-z0-9 .,-]{0,80}[A-Za-z0-9])\r?");
  const std::string line = text.substr(0, text.find('\n'));
  return std::regex_match(line, match, heading) ? match[1].str() : std::string();
}

std::string sha256sum(const fs::path& file) {
  const std::string command = "sha256sum '" + file.string() + "'";
  std::FILE* pipe = popen(command.c_str(), "r");
  std::string digits(7, '\0');
  const std::size_t count = std::fread(digits.data(), 1, digits.size(), pipe);
  pclose(pipe);
  return count == digits.size() ? digits : std::string();
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = text.find('\n', begin);
    result.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return result;
}

class RealNotes : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    home = new support::ThrowawayHome;
    texts = foundTexts();
    ASSERT_GT(texts.size(), 50U) << "scripts/setup --test brings them";
    for (const std::string& text : texts) {
      const auto made = runProgram({"create", "--fields", "id"}, text);
      ASSERT_EQ(made.exitCode, 0) << made.errors;
      ids.push_back(made.output.substr(0, made.output.size() - 1));
    }
  }
  static void TearDownTestSuite() { delete home; }

  static inline support::ThrowawayHome* home = nullptr;
  static inline std::vector<std::string> texts;
  static inline std::vector<std::string> ids;
};

TEST_F(RealNotes, ComeBackByteForByteWithTheirHashTitleAndTags) {
  std::size_t titles = 0;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(runProgram({"cat", ids[i]}).output, texts[i]);
    const auto shown = runProgram({"show", ids[i], "--fields", "hash,length,title,tags"}).output;
    std::vector<std::string> cells;
    for (std::size_t begin = 0, tab = 0; tab != std::string::npos; begin = tab + 1) {
      tab = shown.find('\t', begin);
      cells.push_back(shown.substr(begin, tab - begin));
    }
    ASSERT_EQ(cells.size(), 4U) << shown;
    const fs::path copy = home->path() / "copy";
    std::ofstream(copy, std::ios::binary) << texts[i];
    EXPECT_EQ(cells[0], sha256sum(copy));
    EXPECT_EQ(cells[1], std::to_string(texts[i].size()));
    const std::string title = plainTitle(texts[i]);
    if (!title.empty()) {
      EXPECT_EQ(cells[2], title);
      ++titles;
    }
    // Each tag occurs in the text as written; a text without a "#" before a letter has none.
    if (cells[3] != "\n") {
      const std::string first = cells[3].substr(0, cells[3].find_first_of(",\n"));
      EXPECT_NE(texts[i].find(first), std::string::npos) << first;
    }
    if (texts[i].find('#') == std::string::npos) {
      EXPECT_EQ(cells[3], "\n") << texts[i];
    }
  }
  EXPECT_GT(titles, texts.size() / 10) << "the check has checked something";
}

TEST_F(RealNotes, AreFoundWhereAPlainScanFindsThem) {
  for (const char* word : {"install", "license", "the", "npm", "ab", "README", "xyzzy", "(c)",
                           "https://", "node.js", "é", "config"}) {
    const std::string needle = lowered(word);
    std::set<std::string> expected;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      if (lowered(texts[i]).find(needle) != std::string::npos) expected.insert(ids[i]);
    }
    const auto found = lines(runProgram({"search", word, "--fields", "id"}).output);
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()), expected) << word;
    const auto count = runProgram({"search", word, "--count"}).output;
    EXPECT_EQ(count, std::to_string(expected.size()) + "\n") << word;
    const auto page = lines(runProgram({"search", word, "-n", "5", "--fields", "id"}).output);
    EXPECT_EQ(page,
              (std::vector<std::string>(
                  found.begin(), found.begin() + static_cast<std::ptrdiff_t>(
                                                     std::min<std::size_t>(5, found.size())))))
        << word;
  }
}

}  // namespace
