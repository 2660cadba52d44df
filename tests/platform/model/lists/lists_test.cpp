#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/model/objects/opened_model.h"
#include "support/foreign_client.h"

namespace tavimodel {
namespace {

using support::ForeignClient;
using Lists = OpenedModel;

TEST_F(Lists, CountsNotesByTheirPlaceThroughAllChanges) {
  for (int i = 0; i < 6; ++i) KVNote::noteWithText("# n", context());
  context().save();
  ForeignClient client(home.database());
  client.run(
      "UPDATE note SET trashed = 1 WHERE id <= 2; UPDATE note SET archived = 1 WHERE id = 3");
  client.run("UPDATE note SET permanentlyDeleted = 1 WHERE id = 4; DELETE FROM note WHERE id = 5");
  client.run("INSERT OR REPLACE INTO note (id, text) VALUES (6, 'x')");
  context().reset();
  const auto count = [&](Place place) {
    const FetchRequest request{.place = place};
    const std::int64_t counted = context().count(request);
    EXPECT_EQ(counted, static_cast<std::int64_t>(context().fetch(request).size()));
    return counted;
  };
  EXPECT_EQ(count(Place::trash), 2);
  EXPECT_EQ(count(Place::archive), 1);
  EXPECT_EQ(count(Place::notes), 1);
  EXPECT_EQ(count(Place::anywhere), 4);
}

TEST_F(Lists, ReadsAListInFewStatements) {
  constexpr std::int64_t many = 500;
  KVNote::noteWithText("# n #a #b/c\n- [ ] x", context());
  context().save();
  ForeignClient client(home.database());
  client.run(
      "WITH RECURSIVE more(i) AS (SELECT 2 UNION ALL SELECT i + 1 FROM more WHERE i < 500) "
      "INSERT INTO note (id, title, text) SELECT i, note.title, note.text FROM more, note");
  client.run("INSERT OR IGNORE INTO noteTag SELECT note.id, noteTag.tag FROM note, noteTag");
  const auto statements = [&](std::int64_t limit, bool detailed) {
    reopen();
    FetchRequest request;
    request.fetchLimit = limit;
    request.detailed = detailed;
    const NoteTable notes = context().fetch(request);
    EXPECT_EQ(static_cast<std::int64_t>(notes.size()), limit);
    context().forEachText(notes, [&](const NoteView& read, std::string_view text) {
      EXPECT_THAT(read.tags, testing::ElementsAre("a", "b/c"));
      EXPECT_EQ(read.todoIncomplete, detailed ? 1 : 0);
      EXPECT_EQ(read.length, detailed ? static_cast<std::int64_t>(text.size()) : 0);
      EXPECT_TRUE(read.filenames.empty() && read.pinnedInTags.empty());
    });
    return stack->connection().statementsRun();
  };
  // One more statement for text facts that are still missing: maintenance has little time.
  EXPECT_LE(statements(30, true), statements(5, true) + 25 * 3 + 1) << "tags, pins and files";
  EXPECT_LE(statements(30, false), statements(5, false) + 25) << "tags";
  EXPECT_LE(statements(many, true), 14 + 1) << "a walk over each relation";
}

}  // namespace
}  // namespace tavimodel
