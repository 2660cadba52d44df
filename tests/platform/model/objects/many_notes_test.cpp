#include <fmt/format.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <stdexcept>

#include "platform/markdown/ast.h"
#include "platform/markdown/operations.h"
#include "platform/model/objects/note_tag.h"
#include "platform/model/objects/opened_model.h"
#include "platform/model/objects/tag_renaming.h"
#include "platform/model/search/search_index.h"
#include "platform/model/search/slice_blocks.h"
#include "platform/text/folding.h"
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

/// The trigrams of the notes that are indexed: those that the index has, and those of their texts.
struct Indexed {
  std::map<std::int64_t, std::set<std::string>> found, expected;

  explicit Indexed(sqlite::Connection& connection) {
    std::map<std::int64_t, std::set<std::string>> byRow;
    sqlite::Query slices = connection.query("SELECT slice FROM searchSlice");
    while (slices.step()) {
      const std::int64_t slice = slices.integer(0);
      forEachEntry(connection, slice, [&](std::string_view key, std::string_view positions) {
        PositionSet::decoded(positions).forEach(
            [&](int position) { byRow[slice * sliceCapacity + position].emplace(key); });
      });
    }
    sqlite::Query notes = connection.query(
        "SELECT note, searchRow, note.title, iif(note.encrypted, '', text) FROM noteSummary "
        "JOIN note ON note = id WHERE searchRow IS NOT NULL");
    while (notes.step()) {
      const std::int64_t note = notes.integer(0);
      found[note] = byRow[notes.integer(1)];
      for (const int column : {2, 3}) {
        forEachTrigram(platform::text::foldedForSearch(notes.text(column)),
                       [&](Trigram trigram) { expected[note].insert(utf8Of(trigram)); });
      }
    }
  }
};

void index(sqlite::Connection& connection) {
  catchUp(connection, updateSearchIndex,
          {.fewestNotes = 1, .milliseconds = 10'000, .notesInSlice = 100});
}

TEST_F(ManyNotes, StayIndexedWhenTheirTagIsRenamed) {
  fill();
  ForeignClient(home.database()).run("UPDATE note SET encrypted = 1 WHERE id % 50 = 0");
  reopen();
  index(stack->connection());
  KVNoteTag::tagWithName("work", context())->renameTagWithTagNamed("Große/a\u0301", false);
  const Indexed indexed(stack->connection());
  EXPECT_EQ(indexed.found, indexed.expected);
  EXPECT_GT(indexed.found.size(), count / 2U) << "all but those whose title has changed";
}

TEST_F(ManyNotes, AreIndexedAgainIfTheIndexMayHaveAnotherText) {
  fill();
  reopen();
  index(stack->connection());
  ForeignClient client(home.database());
  const std::vector<KVNote*> notes = context().notesWithTag("work", true);
  const auto of = [](KVNote& note) {
    return fmt::format(" WHERE uniqueIdentifier = '{}'", note.uniqueIdentifier());
  };
  // A program that has turned triggers off changes some texts, but not their titles.
  sqlite3_db_config(client.handle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  for (std::size_t i = 0; i < notes.size(); i += 4) {
    client.run("UPDATE note SET text = text || char(10) || 'theirs'" + of(*notes[i]));
  }
  const TagRenaming renaming("work", "job", false);
  context().saveEach(notes, [&, i = 0](KVNote& note) mutable {
    // Others move in the index after their rows have been read.
    if (++i % 4 == 0) {
      stack->connection()
          .query("UPDATE noteSummary SET searchRow = searchRow + 100000" + of(note))
          .run();
    }
    return renaming.ofNote(note);
  });
  const Indexed indexed(stack->connection());
  EXPECT_EQ(indexed.found, indexed.expected);
  EXPECT_FALSE(indexed.found.empty());
}

/// What this program keeps about the notes, without random numbers and the index.
std::string bookkeeping(const std::filesystem::path& database) {
  return ForeignClient(database).value(
      "SELECT group_concat(row, char(10)) FROM ("
      "SELECT json_array(note, s.title, s.modificationDate, titleKey, textDigest, textLength, "
      "todoIncomplete, todoCompleted, features, text) AS row "
      "FROM noteSummary s JOIN note ON note.id = s.note "
      "UNION ALL SELECT json_array('link', note, target) FROM noteLink "
      "UNION ALL SELECT json_array('tag', note, title) FROM noteTag JOIN tag ON tag.id = tag "
      "ORDER BY 1)");
}

TEST_F(ManyNotes, AreWrittenAlikeWithTriggersOffAndOn) {
  fill();
  stack.reset();
  // Triggers stay on where somebody else has some.
  const std::filesystem::path triggered = home.path() / "triggered";
  std::filesystem::copy(home.data(), triggered, std::filesystem::copy_options::recursive);
  ForeignClient client(triggered / home.database().filename());
  client.run(
      "CREATE TABLE seen (id INTEGER PRIMARY KEY, text TEXT); "
      "CREATE TRIGGER theirs AFTER UPDATE OF text ON note BEGIN "
      "INSERT OR REPLACE INTO seen VALUES (NEW.id, NEW.text); END");
  for (const std::filesystem::path& data : {home.data(), triggered}) {
    std::string error;
    const auto opened = KVCoreDataStackForExtensions::initStackOutputError(data, error);
    ASSERT_NE(opened, nullptr) << error;
    ManagedObjectContext& notes = *opened->managedObjectContext();
    KVNoteTag::tagWithName("work", notes)->renameTagWithTagNamed("job/1", false);
    // The triggers are on again.
    notes.notesWithTag("job/1", true).front()->updateNoteWithText("# another #job/1", false);
    notes.save();
  }
  EXPECT_EQ(bookkeeping(home.database()), bookkeeping(triggered / home.database().filename()));
  EXPECT_EQ(
      client.value("SELECT count(*) FROM seen JOIN note USING (id) WHERE seen.text = note.text"),
      client.value("SELECT count(*) FROM note WHERE text LIKE '%job/1%'"));
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
      // which another program has changed
      changing,
      [](KVNote& note) {
        return NoteChange{nullptr, [&] { note.updateNoteWithText(note.text() + "\nmore", false); }};
      },
      [](KVNote&) { return NoteChange(); },
  };
  const auto* const firstForeign = std::end(failures) - 3;
  for (const auto& failure : failures) {
    const std::vector<KVNote*> notes = context().notesWithTag("work", true);
    ASSERT_GT(notes.size(), 200U);
    ForeignClient client(home.database());
    if (&failure >= firstForeign) {
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

TEST_F(ManyNotes, AreNotWrittenOverATextThatChangedWithoutTriggers) {
  fill();
  const std::vector<KVNote*> notes = context().notesWithTag("work", true);
  EXPECT_FALSE(notes[7]->text().empty());
  ForeignClient client(home.database());
  sqlite3_db_config(client.handle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  client.run("UPDATE note SET text = text || 'theirs' WHERE uniqueIdentifier = '" +
             notes[7]->uniqueIdentifier() + "'");
  const std::string before = state();
  EXPECT_ANY_THROW(context().saveEach(notes, [](KVNote& note) {
    return NoteChange{nullptr, [&] { note.updateNoteWithText(note.text() + "\nmore", false); }};
  }));
  EXPECT_EQ(state(), before);
}

}  // namespace
}  // namespace tavimodel
