// markdown_growth [KIB]: measures how the time to parse a text grows with its size, for texts that
// are designed to be slow. Prints one line per kind of text: milliseconds for KIB (default 256),
// twice and four times as much, and the ratio of the last to the first; 4 means linear growth.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "platform/markdown/ast.h"

namespace {

constexpr double kTooLong = 10'000;  // milliseconds; larger texts of the kind are skipped

/// A kind of text: a repeated piece.
struct Form {
  std::string name;
  std::string piece;
  std::string tail = {};  ///< repeated as often as the piece, after all of them
};

std::string textOf(const Form& form, std::size_t size) {
  const std::size_t count = size / (form.piece.size() + form.tail.size());
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += form.piece;
  for (std::size_t i = 0; i < count; ++i) text += form.tail;
  return text;
}

/// Runs of 1, 2, 3 and more backticks: each may open a code span, but none is closed.
std::string growingRuns(std::size_t size) {
  std::string text;
  for (std::size_t run = 1; text.size() < size; ++run) text += std::string(run, '`') + "a ";
  return text;
}

/// Nested lists, one level per line.
std::string staircase(std::size_t size) {
  std::string text;
  for (std::size_t depth = 0; text.size() < size; ++depth)
    text += std::string(2 * depth, ' ') + "- a\n";
  return text;
}

double once(const std::string& text) {
  const std::clock_t start = std::clock();
  auto tree = zephyrdown::ZDKAST::fromMarkdown(text);
  (void)tree.textSummary();
  tree.applyTextOperationResults(tree.appendText("end"));
  tree.applyTextOperationResults(tree.addHashtag("tag", /*bottom=*/false));
  (void)tree.textSummary();
  return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

/// The least processor time of several runs, which other processes hardly affect.
double milliseconds(const std::string& text) {
  double least = once(text);
  for (int run = 0; run < 4 && least < 200; ++run) least = std::min(least, once(text));
  return least;
}

template <class Make>
void measure(const std::string& name, std::size_t size, Make make) {
  std::printf("| %-28s ", name.c_str());
  double first = 0, last = 0;
  for (const std::size_t factor : {1U, 2U, 4U}) {
    if (last > kTooLong) {
      std::printf("|     left out ");
      continue;
    }
    last = milliseconds(make(size * factor));
    if (factor == 1) first = last;
    std::printf("| %8.2f ", last);
    std::fflush(stdout);
  }
  std::printf("| %5.1f |\n", last / first);
}

}  // namespace

int main(int count, char** arguments) {
  const std::size_t size = (count > 1 ? std::strtoul(arguments[1], nullptr, 10) : 256) * 1024;
  std::vector<Form> forms = {
      {"paragraphs", "Some words, *stressed* and not.\n\n"},
      {"one line", "some words "},
      {"lines of one paragraph", "some words\n"},
      {"links, one line", "[a](b.pdf) "},
      {"links, a line each", "[a](b.pdf)\n"},
      {"links, a paragraph each", "[a](b.pdf)\n\n"},
      {"images", "![](b.png) "},
      {"wiki links", "[[a]] "},
      {"references", "[a] "},
      {"reference definitions", "[a]: b.pdf\n"},
      {"footnotes", "[^1] "},
      {"footnote definitions", "[^1]: a\n\n"},
      {"hashtags, one line", "#a "},
      {"hashtags, a line each", "#a\n"},
      {"hashtags without an end", "#a b "},
      {"addresses", "http://a.b "},
      {"addresses, www", "www.a.b "},
      {"addresses, mail", "a@b.c "},
      {"to-dos", "- [ ] a\n"},
      {"brackets, nested", "[", "]"},
      {"links, nested", "[", "](b.pdf)"},
      {"images, nested", "![", "](b.png)"},
      {"brackets, open", "[a"},
      {"brackets and bangs, open", "![["},
      {"parentheses", "[a](("},
      {"quotes, nested, one line", "> "},
      {"quotes, nested, no blanks", ">"},
      {"quotes, nested, lines below", "> ", "a\n"},
      {"lists, nested, one line", "- + "},
      {"lists, nested, blank lines", "- + ", "\n"},
      {"lists, nested, lines below", "- + ", "a\n"},
      {"numbers, nested, blank lines", "1. ", "\n"},
      {"lists and quotes, nested", "- > "},
      {"numbers in a paragraph", "a\n2. [a](b.pdf)\n"},
      {"links in a quote", "> [a](b.pdf)\n"},
      {"links in a table", "|[a](b.pdf)\n"},
      {"addresses in brackets", "(www.a.b"},
      {"addresses, a line each", "https://a.b/c\n"},
      {"underlines of headings", "a\n===\n"},
      {"items", "- a\n"},
      {"items apart by blank lines", "- a\n\n"},
      {"stars, nested", "*a ", "b*"},
      {"double stars, nested", "**a ", "b**"},
      {"stars, open", "*a "},
      {"stars and double stars", "*a **b "},
      {"underlines, open", "_a "},
      {"tildes, open", "~~a "},
      {"code spans", "`a` "},
      {"fences", "```\na\n```\n"},
      {"table rows", "|a|b|\n|-|-|\n"},
      {"table columns", "|a"},
      {"tags of HTML", "<b>"},
      {"tags of HTML, open", "<a "},
      {"comments, open", "<!-- "},
      {"comments of links", "[a](b.pdf)<!-- "},
      {"instructions, open", "<?"},
      {"declarations, open", "<!A "},
      {"CDATA, open", "<![CDATA["},
      {"entities", "&amp;"},
      {"backslashes", "\\"},
      {"escaped brackets", "\\["},
      {"old line ends", "a\r"},
      {"line ends of two", "a\r\n"},
  };
  for (const Form& form : forms) {
    measure(form.name, size, [&](std::size_t wanted) { return textOf(form, wanted); });
  }
  measure("code spans of growing marks", size, growingRuns);
  measure("lists, a staircase", size, staircase);
  for (int byte = 0; byte < 256; ++byte) {
    char name[32];
    std::snprintf(name, sizeof name, "byte %02X", static_cast<unsigned>(byte));
    measure(name, size,
            [&](std::size_t wanted) { return std::string(wanted, static_cast<char>(byte)); });
  }
  for (const char* character : {"é", "e\u0301", "\u0301", "日", "🎉", "\u00A0", "\u200D", "ß"}) {
    measure(std::string("character ") + character, size, [&](std::size_t wanted) {
      return textOf({"", character}, wanted);
    });
  }
}
