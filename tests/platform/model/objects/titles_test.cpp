#include <fmt/format.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/model/objects/note.h"
#include "platform/model/objects/opened_model.h"
#include "platform/text/folding.h"
#include "support/foreign_client.h"

namespace tavimodel {
namespace {

using platform::text::foldedForSearch;

/// SQL expressions of titles, several of which are the same ignoring case.
constexpr const char* kTitles[] = {
    "'Plan'",      "'plan'",    "'PLAN B'",      "'plan b'",
    "x'506c616e'", "'Ärger'",   "'A\u0308RGER'", "'ärger'",
    "'straße'",    "'STRASSE'", "'\u212Aelvin'", "'kelvin'",
    "'ﬁn'",        "'FIN'",     "'Été'",         "'é'",
    "''",          "NULL",      "'日本語'",      "'a' || char(0) || 'É'"};

class Titles : public OpenedModel {
 protected:
  using Identifiers = std::multiset<std::string>;

  void insert(int times) {
    support::ForeignClient client(home.database());
    for (const char* title : kTitles) {
      for (int i = 0; i < times; ++i) {
        client.run(fmt::format("INSERT INTO note (title, text) VALUES ({}, 'x')", title));
      }
    }
  }

  /// All titles by their notes' identifiers, as the database has them.
  std::vector<std::pair<std::string, std::string>> all() {
    std::vector<std::pair<std::string, std::string>> titles;
    auto query = stack->connection().query("SELECT uniqueIdentifier, title FROM note");
    while (query.step()) titles.emplace_back(query.text(0), query.text(1));
    return titles;
  }

  void expectAllFound() {
    const auto titles = all();
    for (const auto& [identifier, sought] : titles) {
      Identifiers expected, found;
      for (const auto& [other, title] : titles) {
        if (foldedForSearch(title) == foldedForSearch(sought)) expected.insert(other);
      }
      for (const KVNote* note : KVNote::notesWithTitle(sought, context())) {
        found.insert(note->uniqueIdentifier());
      }
      EXPECT_EQ(found, expected) << sought;
    }
  }

  std::string value(const char* sql) { return support::ForeignClient(home.database()).value(sql); }
};

TEST_F(Titles, AreFoundBeforeTheyAreIndexedAndAfterwards) {
  insert(1);
  expectAllFound();
  insert(5);
  reopen();  // closing indexes them
  ASSERT_EQ(value("SELECT count(*) FROM noteSummary WHERE searchRow IS NULL"), "0");
  expectAllFound();
  // Each key takes an index entry.
  EXPECT_EQ(value("SELECT count(*) FROM noteSummary WHERE titleKey = title COLLATE NOCASE"), "0");
}

TEST_F(Titles, AreFoundWhereThisProgramWroteThem) {
  const char* const written[] = {"Plan", "plan", "Ärger", "A\u0308RGER", "\u212Aelvin", "kelvin"};
  for (int i = 0; i < 20; ++i) {
    for (const char* title : written) KVNote::noteWithText(std::string("# ") + title, context());
  }
  context().save();
  expectAllFound();
  reopen();
  ASSERT_EQ(value("SELECT count(*) FROM noteSummary WHERE searchRow IS NULL"), "0");
  expectAllFound();
  // Other titles of the same notes.
  std::size_t next = 0;
  for (const auto& [identifier, title] : all()) {
    KVNote::noteWithUniqueIdentifier(identifier, context())
        ->updateNoteWithText(std::string("# ") + written[next++ / 7 % 6], true);
  }
  context().save();
  expectAllFound();
  reopen();
  expectAllFound();
}

}  // namespace
}  // namespace tavimodel
