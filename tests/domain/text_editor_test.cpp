#include "domain/text_editor.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "domain/store_errors.h"

namespace tavi {
namespace {

using Kind = EditAction::Kind;

EditOperation replacement(std::string find, std::string text) {
  return {.find = std::move(find), .action = {Kind::replace, std::move(text)}};
}

/// The new text, or the error's message.
std::string edited(const EditOperation& edit, std::string_view text) {
  try {
    return TextEditor::applyEdit(edit, text, "42");
  } catch (const NoteStoreError& error) {
    return error.message();
  }
}

std::string ambiguous(int count) {
  return NoteStoreError::stringMatchesMultiple("42", count).message();
}

const std::string kNotFound = NoteStoreError::stringNotFound("42").message();

TEST(TextEditor, EditsTheOneMatchAndRefusesToGuess) {
  EXPECT_EQ(edited(replacement("cat", "dog"), "a cat!"), "a dog!");
  EXPECT_EQ(edited(replacement("cat", ""), "a cat!"), "a !");
  EXPECT_EQ(edited({.find = "cat", .action = {Kind::insertAfter, "s"}}, "a cat!"), "a cats!");
  EXPECT_EQ(edited({.find = "cat", .action = {Kind::insertBefore, "fat "}}, "a cat!"),
            "a fat cat!");
  EXPECT_EQ(edited(replacement("cat", "dog"), "cat cat"), ambiguous(2));
  EXPECT_EQ(edited(replacement("dog", "cat"), "cat cat"), kNotFound);
  EXPECT_EQ(edited(replacement("", "x"), "cat"), kNotFound);
  EXPECT_EQ(edited(replacement("aa", "b"), "aaa"), "ba");
}

TEST(TextEditor, EditsAllMatchesOfTheTextAsItCameIn) {
  const auto all = [](EditOperation edit, std::string_view text) {
    edit.all = true;
    return edited(edit, text);
  };
  EXPECT_EQ(all(replacement("cat", "dog"), "cat cat"), "dog dog");
  EXPECT_EQ(all(replacement("a", "aa"), "aba"), "aabaa");
  EXPECT_EQ(all({.find = "a", .action = {Kind::insertAfter, "!"}}, "a a"), "a! a!");
  EXPECT_EQ(all({.find = "a", .action = {Kind::insertBefore, "!"}}, "a a"), "!a !a");
  EXPECT_EQ(all(replacement("x", "y"), "z"), kNotFound);
}

TEST(TextEditor, ComparesLikeAReader) {
  EXPECT_EQ(edited(replacement("caf\u00E9", "tea"), "a cafe\u0301."), "a tea.");
  EXPECT_EQ(edited(replacement("cafe", "tea"), "a cafe\u0301."), kNotFound);
  EXPECT_EQ(edited(replacement("CAT", "dog"), "a cat"), kNotFound);
  const EditOperation caseless = {.find = "STRASSE", .action = {}, .ignoreCase = true};
  EXPECT_EQ(edited(caseless, "die Stra\u00DFe!"), "die !");
  EXPECT_EQ(edited(caseless, "Strasse strasse"), ambiguous(2));
}

TEST(TextEditor, FindsWholeWords) {
  struct Case {
    const char *find, *text, *result;
  };
  const Case cases[] = {
      {"cat", "concat cats", nullptr},
      {"cat", "a cat.", "a <>."},
      {"cat", "cat", "<>"},
      {"cat", "cats cat", "cats <>"},
      {"foo_", "foo_bar", nullptr},
      {"foo_", "foo_ bar", "<> bar"},
      {"caf", "caf\u00E9", nullptr},
      {"caf", "cafe\u0301", nullptr},
      {"e", "cafe\u0301", nullptr},
      {"#tag", "a #tag", "a <>"},
      {"#tag", "#tag", "<>"},
      {"#tag", "a#tag", nullptr},
      {"x++", "use x++ here", "use <> here"},
      {"x++", "x++y", nullptr},
      {"x++", "x++", "<>"},
      {"foo.", "foo. foo.x", "<> foo.x"},
      {"a.c", "abc a.c", "abc <>"},
      {"\u00E9t\u00E9", "l'\u00E9t\u00E9 ", "l'<> "},
      {"\\E(", "x \\E( y", "x <> y"},
      {"cat", "Cat", nullptr},
      {"", "cat", nullptr},
      {"", "", nullptr},
      {"", "\u00E9  \u00E9", nullptr},
  };
  for (const Case& c : cases) {
    const EditOperation edit = {.find = c.find, .action = {Kind::replace, "<>"}, .word = true};
    EXPECT_EQ(edited(edit, c.text), c.result == nullptr ? kNotFound : c.result)
        << c.find << " in " << c.text;
  }
  EXPECT_EQ(
      edited({.find = "cat", .action = {Kind::replace, "<>"}, .ignoreCase = true, .word = true},
             "Cat cats CAT"),
      ambiguous(2));
}

// With a non-ASCII separator, the same text is searched with the regular expression.
TEST(TextEditor, FindsTheSameWordsInPlainTextsAsTheRegularExpression) {
  constexpr std::string_view kAlphabet = "aaAb_1 .#\n\r";
  std::mt19937 random(8);
  const auto randomText = [&](std::size_t size) {
    std::string text;
    while (text.size() < size) text += kAlphabet[random() % kAlphabet.size()];
    return text;
  };
  for (int round = 0; round < 3000; ++round) {
    const EditOperation edit = {.find = randomText(1 + random() % 3),
                                .action = {Kind::replace, "<>"},
                                .all = true,
                                .ignoreCase = random() % 2 == 0,
                                .word = true};
    const std::string text = randomText(random() % 24);
    const std::string plain = edited(edit, text);
    const std::string expected = edited(edit, text + "\u2028");
    ASSERT_EQ(plain == kNotFound ? plain : plain + "\u2028", expected)
        << edit.find << " in " << text;
  }
}

TEST(TextEditor, ABatchWorksOnTheTextOfTheEditBefore) {
  EXPECT_EQ(TextEditor::applyEdits({replacement("a", "b"), replacement("b", "c")}, "a", "42"), "c");
  EXPECT_EQ(TextEditor::applyEdits({}, "as it was", "42"), "as it was");
  try {
    TextEditor::applyEdits({replacement("a", "b"), replacement("a", "c")}, "a", "42");
    FAIL();
  } catch (const NoteStoreError& error) {
    EXPECT_EQ(error, NoteStoreError::batchEditFailed(1, "a", NoteStoreError::stringNotFound("42")));
  }
}

}  // namespace
}  // namespace tavi
