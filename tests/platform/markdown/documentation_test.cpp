#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include "platform/markdown/ast.h"
#include "platform/markdown/hashtag.h"

// Checks the examples of docs/markdown.md: a fenced block named "note", followed by blocks named
// after what is read from the note or done to it.

namespace zephyrdown {
namespace {

using Operations = std::vector<ZDKASTOperationResult>;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines(1);
  for (const char c : text) {
    if (c == '\n') {
      lines.emplace_back();
    } else {
      lines.back() += c;
    }
  }
  return lines;
}

std::string page() {
  std::ifstream file(TAVI_MARKDOWN_PAGE, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

struct Example {
  std::string name;  // the info string: "note", "append New"
  std::string text;  // without the last line break
};

std::vector<Example> examplesOf(const std::vector<std::string>& lines) {
  constexpr const char* kFence = "~~~~";
  std::vector<Example> examples;
  for (auto line = lines.begin(); line != lines.end(); ++line) {
    if (!line->starts_with("~~~~ ")) continue;
    const auto end = std::find(line, lines.end(), kFence);
    if (end == lines.end()) break;
    std::string text;
    for (auto inside = std::next(line); inside != end; ++inside) text += *inside + "\n";
    examples.push_back({line->substr(5), text.substr(0, text.size() - 1)});
    line = end;
  }
  return examples;
}

std::string joined(const std::vector<std::string>& items) {
  std::string result;
  for (const std::string& item : items) result += (result.empty() ? "" : ", ") + item;
  return result;
}

std::string fact(const ZDKTextSummary& summary, const std::string& name) {
  std::vector<std::string> files;
  for (const FileLink& file : summary.files) files.push_back(file.filename);
  const std::map<std::string, std::string> facts = {
      {"title", summary.title},
      {"tags", joined(summary.tags)},
      {"files", joined(files)},
      {"wiki", joined(summary.wikiLinks)},
      {"open", std::to_string(summary.todoIncomplete)},
      {"done", std::to_string(summary.todoCompleted)},
      {"images", summary.hasImages ? "yes" : "no"},
  };
  return facts.at(name);
}

Operations planned(const ZDKAST& tree, const std::string& verb, const std::string& object) {
  if (verb == "append") return tree.appendText(object);
  if (verb == "prepend") return tree.prependText(object);
  if (verb == "add-top") return tree.addHashtag(object, /*bottom=*/false);
  if (verb == "add-bottom") return tree.addHashtag(object, /*bottom=*/true);
  if (verb == "remove") return tree.removeHashtag(object);
  if (verb == "remove-file") return tree.removeLinkWithURL(object);
  const std::size_t arrow = object.find(" -> ");
  EXPECT_EQ(verb, "rename");
  return tree.renameHashtag(object.substr(0, arrow), object.substr(arrow + 4));
}

/// Bytes that a page cannot show are written as \r \n \t \0 and \BOM in a block called "bytes".
std::string shown(std::string text, bool asBytes) {
  constexpr std::pair<std::string_view, std::string_view> kBytes[] = {
      {"\r", "\\r"},
      {"\n", "\\n"},
      {"\t", "\\t"},
      {std::string_view("\0", 1), "\\0"},
      {"\uFEFF", "\\BOM"}};
  for (const auto& [byte, name] : kBytes) {
    const auto from = asBytes ? name : byte;
    const auto to = asBytes ? byte : name;
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
      text.replace(at, from.size(), to);
      at += to.size();
    }
  }
  return text;
}

TEST(MarkdownPage, TellsWhatIsReadFromANoteAndDoneToIt) {
  std::string note;
  bool isBytes = false;
  std::size_t checked = 0;
  for (const auto& [name, text] : examplesOf(linesOf(page()))) {
    SCOPED_TRACE(name + "\n" + text);
    if (name == "note" || name == "bytes") {
      isBytes = name == "bytes";
      note = isBytes ? shown(text, /*asBytes=*/true) : text;
      continue;
    }
    ++checked;
    ZDKAST tree = ZDKAST::fromMarkdown(note);
    if (name == "facts") {
      for (const std::string& line : linesOf(text)) {
        const std::size_t colon = line.find(':');
        const std::string value = line.substr(std::min(colon + 2, line.size()));
        EXPECT_EQ(fact(tree.textSummary(), line.substr(0, colon)), value);
      }
      continue;
    }
    const std::size_t blank = name.find(' ');
    tree.applyTextOperationResults(planned(tree, name.substr(0, blank), name.substr(blank + 1)));
    EXPECT_EQ(isBytes ? shown(tree.markdown(), /*asBytes=*/false) : tree.markdown(), text);
  }
  EXPECT_GE(checked, 34u);
}

/// Splits "| `a` | `b` | |" into "a", "b" and an empty text.
std::vector<std::string> cellsOf(const std::string& row) {
  std::vector<std::string> cells;
  for (std::size_t begin = 1; begin < row.size();) {
    const std::size_t end = row.find('|', begin);
    const std::string cell = row.substr(begin, end - begin);
    const std::size_t open = cell.find('`');
    cells.push_back(open == std::string::npos ? std::string()
                                              : cell.substr(open + 1, cell.rfind('`') - open - 1));
    begin = end + 1;
  }
  return cells;
}

TEST(MarkdownPage, TellsHowTagsAreNamedAndWritten) {
  std::size_t checked = 0;
  for (const std::string& line : linesOf(page())) {
    if (!line.starts_with("| `")) continue;
    const auto cells = cellsOf(line);
    ASSERT_EQ(cells.size(), 3u) << line;
    const auto name = ZDKHashtag::sanitizeTagName(cells[0]);
    EXPECT_EQ(name.value_or(""), cells[1]) << line;
    EXPECT_EQ(name ? ZDKHashtag::hashtagStringForTagName(*name).value_or("") : "", cells[2]);
    ++checked;
  }
  EXPECT_GE(checked, 6u);
}

}  // namespace
}  // namespace zephyrdown
