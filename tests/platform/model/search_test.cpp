#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <set>

#include "platform/model/core_data_stack.h"
#include "platform/model/search_index.h"
#include "platform/model/search_manager.h"
#include "platform/text/string_search.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavimodel {
namespace {

class Search : public testing::Test {
 protected:
  void SetUp() override { reopen(); }

  void reopen() {
    std::string error;
    stack.reset();
    stack = KVCoreDataStackForExtensions::initStackOutputError(error);
    ASSERT_NE(stack, nullptr) << error;
  }

  ManagedObjectContext& context() { return *stack->managedObjectContext(); }

  void create(const std::string& text) {
    KVNote::noteWithText(text, context());
    context().save();
  }

  void index() {
    context().reset();
    sqlite::Transaction transaction(stack->connection(), sqlite::Transaction::Kind::write);
    SearchIndex(stack->connection()).bringUpToDate(60000);
    transaction.commit();
  }

  /// Titles of what is found, ascending.
  std::multiset<std::string> found(const std::string& query) {
    context().reset();
    FetchRequest request;
    if (auto predicate = KVNoteSearchManager::predicateForSearchString(query)) {
      request.predicate = *predicate;
    }
    std::multiset<std::string> titles;
    const NoteTable notes = context().fetch(request);
    for (std::size_t i = 0; i < notes.size(); ++i) titles.emplace(notes[i].title);
    EXPECT_EQ(context().count(request), static_cast<std::int64_t>(titles.size())) << query;
    return titles;
  }

  using Titles = std::multiset<std::string>;

  support::ThrowawayHome home;
  std::unique_ptr<KVCoreDataStackForExtensions> stack;
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

// The index, the walk and the full scan are shortcuts to one answer: what the texts say.
TEST_F(Search, FindsWhatAPlainScanFinds) {
  std::mt19937 random(20240131);
  const std::vector<std::string> words = {
      "ab", "abc", "Abcd", "ÉTÉ", "été", "e\xCC\x81t\xC3\xA9", "straße", "STRASSE", "日本語", "a",
      "\"", "ﬁn",  "fin",  "x-y", "ΑΒΓς"};
  const auto word = [&] { return words[random() % words.size()]; };
  const auto text = [&] {
    std::string result = "# " + word();
    for (auto n = random() % 12; n > 0; --n) result += (random() % 3 ? " " : "") + word();
    return result;
  };
  std::vector<std::string> texts;
  for (int i = 0; i < 60; ++i) {
    texts.push_back(text());
    KVNote::noteWithText(texts.back(), context());
  }
  context().save();
  support::ForeignClient client(home.database());
  for (int round = 0; round < 60; ++round) {
    if (round % 10 == 5) index();
    if (round % 3 == 0) {  // a stranger changes a note
      const std::size_t changed = random() % texts.size();
      texts[changed] = text();
      char* sql = sqlite3_mprintf("UPDATE note SET text = %Q, title = '' WHERE id = %d",
                                  texts[changed].c_str(), static_cast<int>(changed + 1));
      client.run(sql);
      sqlite3_free(sql);
    }
    const std::string first = word() == "\"" ? "fin" : word();
    const std::string second = word();
    if (first == "\"" || second == "\"") continue;
    const bool negated = random() % 2;
    const bool either = random() % 2;
    const std::string query = first + (either ? " or " : " ") + (negated ? "-" : "") + second;
    const platform::text::StringSearch a(first, platform::text::CaseFolding::full);
    const platform::text::StringSearch b(second, platform::text::CaseFolding::full);
    std::set<std::int64_t> expected;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      const bool hasA = a.isIn(texts[i]);
      const bool hasB = b.isIn(texts[i]) != negated;
      if (either ? hasA || hasB : hasA && hasB) expected.insert(static_cast<std::int64_t>(i + 1));
    }
    for (const std::int64_t limit : {INT64_MAX, std::int64_t{7}}) {
      context().reset();
      FetchRequest request;
      request.predicate = *KVNoteSearchManager::predicateForSearchString(query);
      request.sortDescriptors = {{SortKey::modificationDate, false}};
      request.fetchLimit = limit;
      std::set<std::string> ids;
      const NoteTable notes = context().fetch(request);
      for (std::size_t i = 0; i < notes.size(); ++i) ids.emplace(notes[i].uniqueIdentifier);
      std::set<std::string> wanted;
      for (auto id = expected.rbegin(); id != expected.rend(); ++id) {
        if (static_cast<std::int64_t>(wanted.size()) == limit) break;
        wanted.insert(
            client.value("SELECT uniqueIdentifier FROM note WHERE id = " + std::to_string(*id)));
      }
      if (limit == INT64_MAX) {
        EXPECT_EQ(ids, wanted) << query;
      } else {
        EXPECT_EQ(ids.size(), wanted.size()) << query;
      }
    }
  }
}

TEST_F(Search, CountsEveryTermThatIsNotNegated) {
  const auto count = [](const char* query, const char* text) {
    const auto counter = KVNoteSearchManager::defaultSearchRegexForSearchString(query);
    return counter ? counter->numberOfMatches(text) : -1;
  };
  EXPECT_EQ(count("cat", "Cat cat concat"), 3);
  EXPECT_EQ(count("cat or dog -bird", "cat dog bird"), 2);
  EXPECT_EQ(count("ab abc", "abc ab"), 2);
  EXPECT_EQ(count("#tag @todo -x", "x"), -1);
}

}  // namespace
}  // namespace tavimodel
