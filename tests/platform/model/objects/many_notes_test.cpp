#include <fmt/format.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <random>
#include <stdexcept>

#include "platform/markdown/ast.h"
#include "platform/markdown/operations.h"
#include "platform/model/objects/note_tag.h"
#include "platform/model/objects/opened_model.h"
#include "support/foreign_client.h"

namespace tavimodel {
namespace {

using support::ForeignClient;
using zephyrdown::ZDKAST;

/// More notes than are read, planned and written at once.
class ManyNotes : public OpenedModel {
 protected:
  static constexpr int count = 300;

  static std::string randomText(std::mt19937& random) {
    const char* const pieces[] = {"# A title #work\n\n",
                                  "#work ",
                                  "#work/a b# ",
                                  "- [ ] x\n",
                                  "`#work`",
                                  "\n```\n#work\n```\n",
                                  "[[#work]] ",
                                  "(#work/ä)",
                                  "#job #work\n",
                                  "\\#work ",
                                  "plain\n"};
    std::uniform_int_distribution<std::size_t> piece(0, std::size(pieces) - 1);
    std::string text;
    for (int i = 0; i < 6; ++i) text += pieces[piece(random)];
    return text;
  }

  std::vector<std::string> fill() {
    std::mt19937 random(1);
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i) {
      texts.push_back(fmt::format("{}\n{}", randomText(random), i));
      KVNote::noteWithText(texts.back(), context());
    }
    context().save();
    return texts;
  }

  std::string state() {
    return ForeignClient(home.database())
               .value(
                   "SELECT group_concat(text || version || textDigest, '|') FROM note "
                   "JOIN noteSummary ON note = id") +
           ForeignClient(home.database())
               .value("SELECT group_concat(note || ' ' || tag) FROM noteTag");
  }
};

TEST_F(ManyNotes, AreRenamedLikeEachOfThem) {
  const std::vector<std::string> texts = fill();
  ForeignClient client(home.database());
  client.run(
      "INSERT OR IGNORE INTO noteTag SELECT note.id, tag.id FROM note, tag "
      "WHERE tag.title = 'work' AND note.id % 10 = 0;"
      "INSERT INTO pinnedInTag SELECT note.id, tag.id FROM note, tag "
      "WHERE tag.title = 'work' AND note.id % 7 = 0;"
      "UPDATE note SET encrypted = 1 WHERE id % 50 = 0");
  reopen();
  const std::string now = "new job/1";
  KVNoteTag::tagWithName("work", context())->renameTagWithTagNamed(now, false);
  reopen();
  std::vector<KVNote*> notes;
  sqlite::Query ids = context().reading().query("SELECT uniqueIdentifier FROM note ORDER BY id");
  while (ids.step()) {
    notes.push_back(KVNote::noteWithUniqueIdentifier(ids.text(0), context()));
  }
  ASSERT_EQ(notes.size(), texts.size());
  for (std::size_t i = 0; i < notes.size(); ++i) {
    const std::size_t id = i + 1;
    std::string expected = texts[i];
    if (!notes[i]->encryptedValue()) {
      const std::vector<std::string> tags = zephyrdown::textSummary(expected).tags;
      expected = withOperations(expected, ZDKAST::viewing(expected).renameHashtag("work", now));
      if (id % 10 == 0 && std::ranges::count(tags, "work") == 0) {
        expected = withOperations(expected, ZDKAST::viewing(expected).addHashtag(now, false));
      }
    }
    const zephyrdown::ZDKTextSummary summary = zephyrdown::textSummary(expected);
    if (!notes[i]->encryptedValue()) {
      EXPECT_THAT(notes[i]->tagsStrings(), testing::UnorderedElementsAreArray(summary.tags));
    }
    EXPECT_EQ(notes[i]->text(), expected);
    EXPECT_EQ(notes[i]->textFacts().digest, TextFacts::of(expected).digest);
    EXPECT_EQ(notes[i]->title(), summary.title);
    EXPECT_EQ(notes[i]->pinnedInTags().size(), id % 7 == 0 ? 1U : 0U);
  }
  EXPECT_EQ(client.value("SELECT count(*) FROM tag WHERE title LIKE 'work%'"), "0");
}

TEST_F(ManyNotes, AreAllSavedOrNone) {
  fill();
  const auto throwing = [] { throw std::runtime_error("cannot"); };
  const auto changing = [](KVNote& note) {
    return NoteChange{nullptr, [&] { note.updateNoteWithText("# new #tag", false); }};
  };
  // What happens to the 200th note.
  const std::function<NoteChange(KVNote&)> failures[] = {
      [&](KVNote&) -> NoteChange { throw std::runtime_error("cannot"); },
      [&](KVNote&) {
        return NoteChange{throwing, nullptr};
      },
      [&](KVNote&) {
        return NoteChange{nullptr, throwing};
      },
      changing,  // which another program has changed
  };
  for (const auto& failure : failures) {
    const std::vector<KVNote*> notes = context().notesWithTag("work", true);
    ASSERT_GT(notes.size(), 200U);
    ForeignClient client(home.database());
    if (&failure == std::end(failures) - 1) {
      client.run("UPDATE note SET pinned = 1 WHERE uniqueIdentifier = '" +
                 notes[200]->uniqueIdentifier() + "'");
    }
    const std::string before = state();
    EXPECT_ANY_THROW(context().saveEach(
        notes, [&](KVNote& note) { return &note == notes[200] ? failure(note) : changing(note); }));
    EXPECT_EQ(state(), before);
    client.run("PRAGMA busy_timeout = 0; BEGIN IMMEDIATE; ROLLBACK");  // the lock is free
  }
  context().saveEach(context().notesWithTag("work", true), changing);
  EXPECT_TRUE(context().notesWithTag("work", true).empty());
}

}  // namespace
}  // namespace tavimodel
