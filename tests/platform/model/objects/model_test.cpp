#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <utility>

#include "platform/model/objects/core_data_stack.h"
#include "platform/model/objects/errors.h"
#include "platform/model/objects/note_tag.h"
#include "platform/model/search/note_search.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavimodel {
namespace {

using support::ForeignClient;

class Model : public testing::Test {
 protected:
  std::unique_ptr<KVCoreDataStackForExtensions> open() {
    std::string error;
    auto stack = KVCoreDataStackForExtensions::initStackOutputError(home.data(), error);
    EXPECT_NE(stack, nullptr) << error;
    return stack;
  }

  std::string create(const std::string& text) {
    auto stack = open();
    const std::string id =
        KVNote::noteWithText(text, *stack->managedObjectContext()).uniqueIdentifier();
    stack->managedObjectContext()->save();
    return id;
  }

  KVNote& note(KVCoreDataStackForExtensions& stack, const std::string& id) {
    KVNote* found = KVNote::noteWithUniqueIdentifier(id, *stack.managedObjectContext());
    if (found == nullptr) throw std::runtime_error("no note " + id);
    return *found;
  }

  support::ThrowawayHome home;
};

int conflictCode(ManagedObjectContext& context) {
  try {
    context.save();
  } catch (const DomainError& error) {
    EXPECT_EQ(error.domain(), NSCocoaErrorDomain);
    return error.code();
  }
  return 0;
}

TEST_F(Model, RefusesWhatIsNoDatabaseOfOursAndLeavesItAsItWas) {
  std::filesystem::create_directories(home.data());
  const auto refused = [&] {
    std::string error;
    const bool none =
        KVCoreDataStackForExtensions::initStackOutputError(home.data(), error) == nullptr;
    return none && !error.empty();
  };
  const auto bytes = [&] {
    std::ifstream file(home.database(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  };
  std::ofstream(home.database()) << std::string(5000, 'x');
  constexpr std::filesystem::perms theirMode{0640};
  std::filesystem::permissions(home.database(), theirMode);
  EXPECT_TRUE(refused());
  EXPECT_EQ(bytes(), std::string(5000, 'x'));
  EXPECT_EQ(std::filesystem::status(home.database()).permissions(), theirMode);

  std::filesystem::remove(home.database());
  ForeignClient(home.database()).run("CREATE TABLE theirs (a)");
  const std::string theirs = bytes();
  EXPECT_TRUE(refused());
  EXPECT_EQ(bytes(), theirs);

  std::filesystem::remove(home.database());
  ForeignClient(home.database()).run("CREATE TABLE note (a); PRAGMA user_version = 99");
  const std::string newer = bytes();
  EXPECT_TRUE(refused());
  EXPECT_EQ(bytes(), newer);

  std::filesystem::remove(home.database());
  std::filesystem::create_directory(home.database());
  EXPECT_TRUE(refused());
}

TEST_F(Model, RefusesATruncatedDatabase) {
  for (int i = 0; i < 40; ++i) create("# n\n" + std::string(4000, 'x'));
  ForeignClient(home.database()).run("PRAGMA wal_checkpoint(TRUNCATE)");
  std::filesystem::resize_file(home.database(), std::filesystem::file_size(home.database()) / 3);
  std::string error;
  EXPECT_EQ(KVCoreDataStackForExtensions::initStackOutputError(home.data(), error), nullptr);
}

TEST_F(Model, FindsTitlesWithoutCaseInEveryScript) {
  create("# Straße zum ÉTÉ");
  ForeignClient(home.database()).run("INSERT INTO note (title, text) VALUES ('été', 'x')");
  auto stack = open();
  auto count = [&](const char* title) {
    return KVNote::notesWithTitle(title, *stack->managedObjectContext()).size();
  };
  EXPECT_EQ(count("STRASSE ZUM e\xCC\x81t\xC3\xA9"), 1U);
  EXPECT_EQ(count("ÉTÉ"), 1U);
  EXPECT_EQ(count("ete"), 0U);
}

// Another program makes each change between our read and our save.
TEST_F(Model, FindsEveryForeignChangeAtTheSave) {
  const struct {
    const char* sql;
    int code;
  } changes[] = {
      {"UPDATE note SET text = 'theirs'", persistentStoreSaveConflictsError},
      {"UPDATE note SET trashed = 1", persistentStoreSaveConflictsError},
      {"INSERT OR REPLACE INTO note (uniqueIdentifier, title, text) "
       "SELECT uniqueIdentifier, title, text FROM note",
       managedObjectMergeError},
      {"INSERT OR REPLACE INTO note (id, uniqueIdentifier, title, text) "
       "SELECT id, uniqueIdentifier, title, text FROM note",
       persistentStoreSaveConflictsError},
      {"DELETE FROM note", managedObjectMergeError},
      {"DROP TRIGGER noteUpdated; UPDATE note SET text = 'theirs'",
       persistentStoreSaveConflictsError},
  };
  for (const auto& [sql, code] : changes) {
    if (exists(home.database())) ForeignClient(home.database()).run("DELETE FROM note");
    const std::string id = create("# mine");
    auto stack = open();
    note(*stack, id).updateNoteWithText("# mine too", true);
    ForeignClient client(home.database());
    client.run(sql);
    const std::string theirs = client.value("SELECT text FROM note");
    EXPECT_EQ(conflictCode(*stack->managedObjectContext()), code) << sql;
    EXPECT_EQ(client.value("SELECT text FROM note"), theirs) << sql;
  }
}

/// Creates two notes, each with a tag, a pin and a file.
class Replaced : public Model {
 protected:
  void SetUp() override {
    for (const char* name : {"one", "two"}) {
      ids.push_back(create(fmt::format("# {0} #{0}", name)));
      std::ofstream(home.temporary() / name) << name;
      auto stack = open();
      KVNoteFile::getOrCreateFileFromURL(home.temporary() / name, note(*stack, ids.back()));
      note(*stack, ids.back()).pinInTag(name);
      stack->managedObjectContext()->save();
    }
  }

  std::size_t storedFiles() {
    const auto files = std::filesystem::recursive_directory_iterator(home.data() / "files");
    return static_cast<std::size_t>(std::count_if(
        begin(files), end(files), [](const auto& entry) { return entry.is_regular_file(); }));
  }

  std::vector<std::string> ids;
};

TEST_F(Replaced, KeepsTagsPinsAndFilesHoweverAStrangerDoesIt) {
  for (const char* sql :
       {"INSERT OR REPLACE INTO note (uniqueIdentifier, text) SELECT uniqueIdentifier, 'new' FROM "
        "note",
        "INSERT OR REPLACE INTO note SELECT * FROM note",
        "PRAGMA recursive_triggers = ON; INSERT OR REPLACE INTO note SELECT * FROM note",
        "PRAGMA recursive_triggers = ON; INSERT OR REPLACE INTO note (uniqueIdentifier, text) "
        "SELECT uniqueIdentifier, 'new' FROM note",
        "CREATE TEMP TABLE kept AS SELECT * FROM note; BEGIN; DELETE FROM note; "
        "INSERT INTO note SELECT * FROM kept; COMMIT",
        "CREATE TEMP TABLE kept AS SELECT * FROM note; BEGIN; DELETE FROM note; "
        "INSERT INTO note (uniqueIdentifier, text) SELECT uniqueIdentifier, text FROM kept "
        "ORDER BY id DESC; COMMIT"}) {
    SCOPED_TRACE(sql);
    ForeignClient client(home.database());
    client.run(sql);
    EXPECT_EQ(client.value("SELECT count(*) FROM note JOIN noteTag ON note.id = noteTag.note"),
              "2");
    for (int i = 0; i < 2; ++i) open();  // each cleans up on closing
    auto stack = open();
    for (std::size_t i = 0; i < ids.size(); ++i) {
      const std::string name = i == 0 ? "one" : "two";
      KVNote& kept = note(*stack, ids[i]);
      EXPECT_EQ(kept.tagsStrings(), std::vector<std::string>{name});
      EXPECT_EQ(kept.pinnedInTags(), std::vector<std::string>{name});
      ASSERT_EQ(kept.orderedFiles().size(), 1U);
      EXPECT_TRUE(kept.fileURL(kept.orderedFiles()[0]));
    }
    EXPECT_EQ(client.value("SELECT count(*) FROM noteSummary"), "2");
    EXPECT_EQ(client.value("SELECT value FROM counter WHERE name = 'notes0'"), "2");
    EXPECT_EQ(client.value("SELECT count(*) FROM orphan"), "0");
  }
}

TEST_F(Replaced, GoesWithAllThatItHadWhenItDoesNotComeBack) {
  ForeignClient client(home.database());
  client.run("DELETE FROM note WHERE id = 1");
  EXPECT_EQ(storedFiles(), 2U) << "until a program of ours comes by";
  open();
  EXPECT_EQ(storedFiles(), 1U);
  client.run("INSERT INTO note (id, text) VALUES (1, 'another')");
  EXPECT_EQ(client.value("SELECT count(*) FROM noteTag WHERE note = 1"), "0");
  EXPECT_EQ(client.value("SELECT (SELECT count(*) FROM orphan) + (SELECT count(*) FROM file)"),
            "1");
}

// Another program's SQL may bypass the triggers; `note.encrypted` still decides.
TEST_F(Model, LocksANoteByItsFlagAloneWhateverTheTriggersDid) {
  const std::string id = create("# a");
  ForeignClient client(home.database());
  const auto locked = [&] { return note(*open(), id).encryptedValue(); };
  const auto listed = [&] {
    auto stack = open();
    return stack->managedObjectContext()->fetch({}).rows()[0].encrypted;
  };
  sqlite3_db_config(client.handle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  for (const bool flag : {true, false, true}) {
    client.run(fmt::format("UPDATE note SET encrypted = {}", flag ? 1 : 0));
    EXPECT_EQ(locked(), flag);
    EXPECT_EQ(listed(), flag);
  }
  client.run("UPDATE noteSummary SET encrypted = 0");
  EXPECT_TRUE(listed());
}

TEST_F(Model, BringsADatabaseOfAnEarlierVersionUpToDate) {
  const std::string id = create("# a #work\n[[Target]]");
  create("# Target");
  create("# indexed");
  ForeignClient client(home.database());
  const std::string version3 =
      "DROP INDEX summaryByTitleIgnoringCase; "
      "UPDATE noteSummary SET titleKey = lower(title); "
      "UPDATE noteSummary SET searchRow = 2047 WHERE title = 'indexed'; "
      "PRAGMA user_version = 3";
  const std::string version2 =
      "DROP TABLE searchSlice; DROP TABLE searchBlock; DROP TABLE noteLink; "
      "DELETE FROM counter WHERE name GLOB '*purged'; "
      "CREATE VIRTUAL TABLE searchIndex USING fts5 (body, content='', detail=none, columnsize=0, "
      "tokenize='trigram case_sensitive 1'); INSERT INTO counter VALUES ('searchRow', 2); "
      "UPDATE noteSummary SET searchRow = iif(textDigest IS NULL, NULL, note), "
      "features = features & ~16; "
      "DROP TRIGGER noteHidden; DROP TRIGGER noteRewritten; DROP TRIGGER summaryDeleted; "
      "DROP TRIGGER summaryRenumbered; PRAGMA user_version = 2";
  const std::string version1 =
      "DROP TABLE orphan; DROP INDEX noteLocked; "
      "DROP TRIGGER noteInserted; DROP TRIGGER summaryOrphaned; "
      "CREATE TRIGGER noteInserted AFTER INSERT ON note BEGIN SELECT 1; END; "
      "CREATE TRIGGER summaryOrphaned AFTER DELETE ON noteSummary BEGIN SELECT 1; END; "
      "PRAGMA user_version = 1";
  const auto titles = [&](const char* query, KVCoreDataStackForExtensions::Access access) {
    std::string error, found;
    auto stack = KVCoreDataStackForExtensions::initStackOutputError(home.data(), error, access);
    FetchRequest request;
    request.search = readSearch(query).query;
    const NoteTable notes = stack->managedObjectContext()->fetch(request);
    for (const ListedRow& note : notes.rows()) found += note.title();
    return found;
  };
  using Access = KVCoreDataStackForExtensions::Access;
  for (const std::string& earlier :
       {version3, version3 + "; " + version2, version3 + "; " + version2 + "; " + version1}) {
    client.run(earlier);
    for (const Access access : {Access::readOnly, Access::readWrite}) {
      EXPECT_EQ(titles("targ -work", access), "Target");
      EXPECT_EQ(titles("@backlinks", access), "Target");
      EXPECT_EQ(client.value("PRAGMA user_version") == "4", access == Access::readWrite);
    }
    EXPECT_EQ(client.value("SELECT count(searchRow) FROM noteSummary"),
              earlier == version3 ? "1" : "0");
    EXPECT_EQ(client.value("SELECT count(titleKey) FROM noteSummary"), "0");
    EXPECT_EQ(note(*open(), id).tagsStrings(), std::vector<std::string>{"work"});
    client.run("PRAGMA recursive_triggers = ON; INSERT OR REPLACE INTO note SELECT * FROM note");
    EXPECT_EQ(note(*open(), id).tagsStrings(), std::vector<std::string>{"work"});
  }
}

TEST_F(Model, MakesAncestorsTagsAndDropsTheDead) {
  const std::string id = create("# a #work/draft/old");
  ForeignClient client(home.database());
  EXPECT_EQ(client.value("SELECT group_concat(title) FROM (SELECT title FROM tag ORDER BY title)"),
            "work,work/draft,work/draft/old");
  auto stack = open();
  auto& context = *stack->managedObjectContext();
  EXPECT_TRUE(KVNoteTag::tagWithName("work", context));
  EXPECT_EQ(KVNoteTag::tagWithName("work", context)->noteCount(), 0U);
  note(*stack, id).pinInTag("work");
  context.save();
  note(*stack, id).updateNoteWithText("# a", true);
  context.save();
  EXPECT_EQ(client.value("SELECT group_concat(title) FROM tag"), "work");
  note(*stack, id).unpinInTag("work");
  context.save();
  EXPECT_EQ(client.value("SELECT count(*) FROM tag"), "0");
}

TEST_F(Model, RollbackAndResetForgetChanges) {
  const std::string id = create("# a\n#t");
  auto stack = open();
  auto& context = *stack->managedObjectContext();
  KVNote& changed = note(*stack, id);
  changed.updateNoteWithText("# b", true);
  changed.pin();
  KVNote::noteWithText("# new", context);
  EXPECT_TRUE(context.hasChanges());
  context.rollback();
  EXPECT_FALSE(context.hasChanges());
  EXPECT_EQ(changed.title(), "a");
  EXPECT_EQ(changed.text(), "# a\n#t");
  EXPECT_FALSE(changed.pinnedValue());
  changed.trash();
  context.reset();
  context.save();
  EXPECT_FALSE(note(*stack, id).trashedValue());
}

// SQLite waits for a lock by sleeping. Here the waits are counted and take no time.
TEST_F(Model, ReadsAndClosesWithoutWaitingForTheWriteLock) {
  static int waits = 0;
  sqlite3_vfs& system = *sqlite3_vfs_find(nullptr);
  const auto sleep = std::exchange(system.xSleep, [](sqlite3_vfs*, int time) {
    ++waits;
    return time;
  });
  const std::string id = create("# a");
  ForeignClient client(home.database());
  client.run("INSERT INTO removedFile VALUES ('to be tidied up')");
  client.run("BEGIN IMMEDIATE; UPDATE note SET title = 'theirs'");
  {
    auto stack = open();
    EXPECT_EQ(note(*stack, id).title(), "a");
    EXPECT_EQ(stack->managedObjectContext()->fetch({}).size(), 1U);
  }
  EXPECT_EQ(waits, 0);
  EXPECT_THROW(create("# b"), std::runtime_error);
  EXPECT_GT(waits, 0) << "a writer waits";
  system.xSleep = sleep;
}

// Each changed page is written to the log and read by the next program, so an update must not touch
// indexes whose columns do not change.
TEST_F(Model, WritesFewPagesForAChangedText) {
  std::string id;
  {
    auto stack = open();
    for (int i = 0; i < 400; ++i) {
      id =
          KVNote::noteWithText(fmt::format("# Note {}\nof text", i), *stack->managedObjectContext())
              .uniqueIdentifier();
    }
    stack->managedObjectContext()->save();
  }
  auto stack = open();
  ForeignClient(home.database()).run("PRAGMA wal_checkpoint(TRUNCATE)");
  KVNote& changed = note(*stack, id);
  changed.updateNoteWithText(changed.text() + " and more", true);
  stack->managedObjectContext()->save();
  constexpr std::uintmax_t page = 4096 + 24;
  // Page 1, the text, the summary row, the index of unindexed notes, and two indexes by date.
  EXPECT_LE(std::filesystem::file_size(home.database().string() + "-wal") / page, 6U);
}

TEST_F(Model, MovesAFileInUnlessSomebodyElseHasIt) {
  const std::string id = create("# a");
  const std::filesystem::path alone = home.temporary() / "alone", shared = home.temporary() / "b";
  for (const auto& path : {alone, shared}) std::ofstream(path) << "bytes";
  std::filesystem::create_hard_link(shared, home.temporary() / "theirs");
  auto stack = open();
  for (const auto& path : {alone, shared}) {
    KVNoteFile::getOrCreateFileFromURL(path, note(*stack, id));
  }
  stack->managedObjectContext()->save();
  EXPECT_FALSE(exists(alone));
  std::ofstream(home.temporary() / "theirs") << "changed";
  for (const KVNoteFile& file : note(*stack, id).orderedFiles()) {
    std::ifstream stored(note(*stack, id).fileURL(file).value());
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stored), {}), "bytes") << *file.filename;
    EXPECT_EQ(file.fileSizeValue, 5);
  }
}

}  // namespace
}  // namespace tavimodel
