#include <gtest/gtest.h>

#include <set>

#include "platform/model/objects/opened_model.h"
#include "platform/model/search/note_search.h"
#include "platform/model/search/search_index.h"
#include "platform/model/storage/bookkeeping.h"
#include "support/foreign_client.h"

namespace tavimodel {
namespace {

class Search : public OpenedModel {
 protected:
  void create(const std::string& text) {
    KVNote::noteWithText(text, context());
    context().save();
  }

  void index() {
    context().reset();
    catchUp(stack->connection(), updateSearchIndex,
            {.fewestNotes = 1, .milliseconds = 1000, .notesInSlice = 1024});
  }

  /// The titles of the notes found, ascending.
  std::multiset<std::string> found(const std::string& query) {
    context().reset();
    FetchRequest request;
    request.search = readSearch(query).query;
    std::multiset<std::string> titles;
    const NoteTable notes = context().fetch(request);
    for (const ListedRow& note : notes.rows()) titles.emplace(note.title());
    EXPECT_EQ(context().count(request), static_cast<std::int64_t>(titles.size())) << query;
    return titles;
  }

  using Titles = std::multiset<std::string>;
};

TEST_F(Search, AnswersEveryDirective) {
  create("# tasks\n- [ ] open\n- [x] finished");
  create("# finished\n- [x] all of it #work/draft");
  create("# tagged\n#work");
  create("# pictured\n![](a.png) and `code`");
  create("# linking [[tagged]]");
  create("");
  support::ForeignClient client(home.database());
  client.run("UPDATE note SET pinned = 1, readOnly = 1 WHERE title = 'tagged'");
  client.run(
      "INSERT INTO file (note, filename, ocrText) SELECT id, 'a.png', 'Invoice' FROM note "
      "WHERE title = 'pictured'");
  client.run(
      "INSERT INTO file (note, filename) SELECT id, 'a.zip' FROM note "
      "WHERE title = 'linking tagged' OR title LIKE 'linking%'");
  client.run("INSERT INTO note (title, text, encrypted) VALUES ('secret', 'hidden - [ ] x', 1)");
  const std::string linking = client.value("SELECT title FROM note WHERE title LIKE 'linking%'");
  const struct {
    const char* query;
    Titles titles;
  } cases[] = {
      {"@todo", {"tasks"}},
      {"@done", {"finished"}},
      {"@task", {"finished", "tasks"}},
      {"#work", {"finished", "tagged"}},
      {"!#work", {"tagged"}},
      {"#*/draft", {"finished"}},
      {"#*/work", {"finished"}},
      {"@tagged -#work/draft", {"tagged"}},
      {"@untagged @locked", {"secret"}},
      {"@pinned", {"tagged"}},
      {"@readonly", {"tagged"}},
      {"@images", {"pictured"}},
      {"@files", {linking}},
      {"@attachments", {linking, "pictured"}},
      {"@code", {"pictured"}},
      {"@wikilinks", {linking}},
      {"@backlinks", {"tagged"}},
      {"@ocr", {"pictured"}},
      {"@ocr invoice", {"pictured"}},
      {"@ocr pictured", {}},
      {"@untitled @empty", {""}},
      {"@title finished", {"finished"}},
      {"finished", {"finished", "tasks"}},
      {"hidden", {}},
      {"secret", {"secret"}},
      {"@today @todo or @pinned", {"tagged", "tasks"}},
  };
  for (const bool indexed : {false, true}) {
    if (indexed) index();
    for (const auto& [query, titles] : cases) EXPECT_EQ(found(query), titles) << query;
  }
}

TEST_F(Search, TellsANotesLinksToItselfFromThoseOfOthers) {
  create("# Mars\n[[mars]]");
  create("# Ärger\n[[ärger]]");
  EXPECT_EQ(found("@backlinks"), Titles{});
  create("# others\n[[mars]] [[ärger]]");
  EXPECT_EQ(found("@backlinks"), (Titles{"Mars", "Ärger"}));
}

TEST_F(Search, SeesAStrangersTextAtOnce) {
  create("# a\nnothing here");
  index();
  support::ForeignClient(home.database())
      .run("UPDATE note SET text = '# a' || char(10) || 'Zebra'");
  EXPECT_EQ(found("zebra"), Titles{"a"});
  EXPECT_EQ(found("nothing"), Titles{});
  index();
  EXPECT_EQ(found("zebra"), Titles{"a"});
  EXPECT_EQ(found("nothing"), Titles{});
}

TEST_F(Search, TreatsOddQueriesAsText) {
  create("# odd\n\"quoted\" AND NEAR(a) * ^ % _ ' ; -- \\ {x} col:val (parens)");
  index();
  for (const char* query : {"\"\\\"quoted\\\"\"", "NEAR(a)", "col:val", "(parens)", "\"' ; --\"",
                            "AND", "{x}", "%", "^"}) {
    EXPECT_EQ(found(query), Titles{"odd"}) << query;
  }
  EXPECT_EQ(found(std::string(200000, 'a')), Titles{});
  std::string thousand;
  for (int i = 0; i < 1000; ++i) thousand += "nowhere" + std::to_string(i) + " or ";
  EXPECT_EQ(found(thousand + "quoted"), Titles{"odd"});
}

// SQL may return the notes of two tags in any order; each must be matched against its own text.
TEST_F(Search, DecidesEachNoteOfTwoTagsOnItsText) {
  create("# first\n#b ab");
  create("# second\n#a xy");
  create("# third\n#b xy");
  EXPECT_EQ(found("xy #a or #b"), (Titles{"second", "third"}));
  EXPECT_EQ(found("-ab #a or #b"), (Titles{"second", "third"}));
}

TEST_F(Search, NegatesADirectiveAndNotWhereTermsAreLookedFor) {
  create("# milk\n");
  create("# bread\nand milk");
  support::ForeignClient client(home.database());
  client.run(
      "INSERT INTO file (note, filename, ocrText) SELECT id, 'a.png', 'milk' FROM note "
      "WHERE title = 'bread'");
  EXPECT_EQ(found("@title milk"), Titles{"milk"});
  EXPECT_EQ(found("-@title milk"), (Titles{"bread", "milk"}));
  EXPECT_EQ(found("@ocr milk"), Titles{"bread"});
  EXPECT_EQ(found("-@ocr milk"), Titles{"milk"});
}

TEST_F(Search, CountsEveryTermThatIsNotNegated) {
  const auto count = [](const char* query, const char* text) {
    const auto counted = readSearch(query).counted;
    return counted ? counted->numberOfMatches(text) : -1;
  };
  EXPECT_EQ(count("cat", "Cat cat concat"), 3);
  EXPECT_EQ(count("cat or dog -bird", "cat dog bird"), 2);
  EXPECT_EQ(count("ab abc", "abc ab"), 2);
  EXPECT_EQ(count("ba or aa", "baaa"), 2);
  EXPECT_EQ(count("é e\u0301 É", "été"), 2) << "the same term";
  EXPECT_EQ(count("a b c d e f g h i j k l m n o p q r s ab", "abc.ab.Z"), 3);
  EXPECT_EQ(count("#tag @todo -x", "x"), -1);
}

}  // namespace
}  // namespace tavimodel
