#include <filesystem>
#include <fstream>

#include "platform/model/search/search_generator.h"
#include "store_fixture.h"

namespace tavi {
namespace {

using Reading = StoreTest;

TEST_F(Reading, ConvertsANoteToItsMetadata) {
  const std::string id = create("# Title\n- [ ] a\n- [x] b\n- [x] c\n\nText é #zeta #alpha #Beta");
  otherProgram(
      "UPDATE note SET pinned = 1, creationDate = 0, modificationDate = 86400.75;"
      "INSERT INTO pinnedInTag SELECT 1, id FROM tag WHERE title IN ('zeta', 'alpha');"
      "INSERT INTO file (note, filename, position) VALUES (1, 'b.png', 0), (1, NULL, 1), (1, "
      "'a.png', 2)");
  const NoteMetadata read = metadata(id);
  EXPECT_EQ(read.title, "Title");
  EXPECT_EQ(read.contentHash.size(), 7U);
  EXPECT_EQ(read.contentLength, 59);
  EXPECT_EQ(read.created.seconds, 0);
  EXPECT_EQ(formatISO8601(read.modified), "1970-01-02T00:00:00Z");
  EXPECT_EQ(read.pins, (Texts{"global", "#alpha", "#zeta"}));
  EXPECT_EQ(read.todos, 1);
  EXPECT_EQ(read.done, 2);
  EXPECT_EQ(read.tags, (Texts{"Beta", "alpha", "zeta"}));
  EXPECT_EQ(read.attachments, (Texts{"b.png", "a.png"}));
  EXPECT_EQ(fresh()->noteWithTitle("TITLE").metadata.contentHash, read.contentHash);
}

TEST_F(Reading, HidesWhatALockedNoteHolds) {
  const std::string id = create("# Secret\n- [ ] x #tag");
  fresh()->addAttachment(id, "x", "a.png");
  lock(id);
  const NoteMetadata read = metadata(id);
  EXPECT_TRUE(read.locked);
  EXPECT_EQ(read.contentHash, "");
  EXPECT_EQ(read.contentLength + read.todos + read.done, 0);
  EXPECT_EQ(read.tags, Texts{"tag"});
  EXPECT_EQ(refusal([&] { fresh()->noteWithID(id); }), "note_locked");
  EXPECT_EQ(refusal([&] { fresh()->noteWithTitle("secret"); }), "note_locked");
  EXPECT_EQ(refusal([&] { fresh()->searchInNote(id, "x", 0, {}); }), "note_locked");
  EXPECT_EQ(fresh()->metadataWithTitle("secret").id, id);
  EXPECT_EQ(fresh()->listTags(id), Texts{"tag"});
  const auto store = fresh();
  const NoteMetadata listed = all(store->listNotes({.detailed = true})).at(0);
  EXPECT_EQ(listed.contentHash, "");
  EXPECT_EQ(listed.contentLength + listed.todos + listed.done, 0);
  EXPECT_EQ(listed.attachments, Texts{});
  EXPECT_EQ(all(store->listNotesWithContent({})).at(0).content, "");
  EXPECT_EQ(all(store->searchNotesWithContent("secret", {})).at(0).note.content, "");
  EXPECT_TRUE(all(store->searchNotes("tag", {})).empty());
  EXPECT_EQ(fresh()->createNoteIfAbsent("secret", {}, {}).content, "");
  const std::string odd = fresh()->createNoteIfAbsent("#", "Body", {}).metadata.id;
  lock(odd);
  EXPECT_NE(fresh()->createNoteIfAbsent("#", "Body", {}).metadata.id, odd) << "how it begins";
}

TEST_F(Reading, SearchesALargeTextToItsEnd) {
  const std::string filler(400'000, 'x');
  const std::string id = create("# Large\nneedle " + filler + " Needle " + filler + " needle");
  const std::vector<SearchMatch> matches = fresh()->searchInNote(id, "needle", 4, {});
  ASSERT_EQ(matches.size(), 3U);
  EXPECT_EQ(matches[1].snippet, "x Needle x");
  EXPECT_EQ(matches[2].byteOffset, 8 + 7 + 400'000 + 8 + 400'000 + 1);
  EXPECT_EQ(fresh()->searchInNote(id, "needle", 100'000, {})[2].snippet.size(), 50'000U + 6);
  EXPECT_EQ(fresh()->searchInNote(id, "needle", 0, 2).size(), 2U);
}

TEST_F(Reading, FindsTitlesAmongActiveNotesOnly) {
  const std::string first = create("# Same");
  const std::string second = create("# same");
  const std::string third = create("# SAME");
  fresh()->moveNote(third, NoteLocation::trash);
  EXPECT_EQ(refusal([&] { fresh()->metadataWithTitle("same"); }), "title_ambiguous");
  fresh()->moveNote(second, NoteLocation::archive);
  EXPECT_EQ(fresh()->metadataWithTitle("same").id, first);
  fresh()->moveNote(first, NoteLocation::archive);
  EXPECT_EQ(refusal([&] { fresh()->metadataWithTitle("same"); }), "note_not_found");
  EXPECT_EQ(refusal([&] { fresh()->metadataWithID("nowhere"); }), "note_not_found");
}

class Listing : public StoreTest {
 protected:
  void SetUp() override {
    for (const char* title : {"b", "C", "a", "d", "e"})
      ids.push_back(create(std::string("# ") + title));
    otherProgram(
        "UPDATE note SET modificationDate = 100 + id, creationDate = 200 - id;"
        "UPDATE note SET pinned = 1 WHERE id = 2;"
        "UPDATE note SET modificationDate = NULL WHERE id = 3;"
        "UPDATE note SET trashed = 1, archived = 1 WHERE id = 4;"
        "UPDATE note SET permanentlyDeleted = 1 WHERE id = 5");
  }

  std::string titles(const std::string& sort, std::int64_t limit = INT64_MAX,
                     std::int64_t offset = 0,
                     std::optional<NoteLocation> location = NoteLocation::notes) {
    const ListRequest request{parseSortCriteria(sort), limit, offset, location};
    std::string listed;
    std::string found;
    const auto store = fresh();
    for (const auto& note : all(store->listNotes(request))) listed += note.title;
    for (const auto& row : all(store->searchNotes("-nowhere", request)))
      found += row.metadata.title;
    if (sort.find("title") == std::string::npos) {
      EXPECT_EQ(listed, found) << sort;
    }
    EXPECT_EQ(store->listNotes(request)->count(), static_cast<std::int64_t>(listed.size()));
    EXPECT_EQ(store->searchNotes("-nowhere", request)->count(),
              static_cast<std::int64_t>(listed.size()));
    return listed;
  }

  std::vector<std::string> ids;
};

TEST_F(Listing, SortsAndPages) {
  EXPECT_EQ(titles("pinned,modified"), "Cba");
  EXPECT_EQ(titles("modified"), "Cba");
  EXPECT_EQ(titles("modified:asc"), "abC");
  EXPECT_EQ(titles("created"), "bCa");
  EXPECT_EQ(titles("title:asc"), "Cab");
  EXPECT_EQ(titles("title"), "baC");
  EXPECT_EQ(titles("pinned:asc,title:asc"), "abC");
  EXPECT_EQ(titles("modified:asc", 1, 1), "b");
  EXPECT_EQ(titles("modified:asc", 5, 2), "C");
  EXPECT_EQ(titles("modified:asc", 5, 9), "");
  EXPECT_EQ(titles("modified", INT64_MAX, 1), "ba");
  for (const std::int64_t limit : {std::int64_t{1}, INT64_MAX}) {
    EXPECT_EQ(titles("modified", limit, INT64_MAX), "");
  }
}

TEST_F(Listing, KeepsOneOrderOfNotesThatAreEqual) {
  const std::string absent = create("# f"), empty = create("# g"), absentToo = create("# h");
  otherProgram(
      "UPDATE note SET title = NULL WHERE id IN (6, 8); UPDATE note SET title = '' WHERE id = 7;"
      "UPDATE note SET trashed = 0, archived = 0, pinned = 0, permanentlyDeleted = 0,"
      "creationDate = NULL, modificationDate = 7");
  const Texts blank = {absentToo, empty, absent};
  const Texts all = {absentToo, empty, absent, ids[4], ids[3], ids[2], ids[1], ids[0]};
  const struct {
    const char* sort;
    Texts expected;
  } cases[] = {
      {"modified", all},
      {"created:asc", all},
      {"pinned,modified:asc", all},
      {"title:asc,pinned", {blank[0], blank[1], blank[2], ids[1], ids[2], ids[0], ids[3], ids[4]}},
      {"title", {ids[4], ids[3], ids[0], ids[2], ids[1], blank[0], blank[1], blank[2]}},
  };
  for (const auto& [sort, expected] : cases) {
    for (const std::int64_t limit : {std::int64_t{8}, INT64_MAX}) {
      const auto store = fresh();
      const ListRequest request{parseSortCriteria(sort), limit};
      Texts listed, found;
      for (const auto& note : tavi::all(store->listNotes(request))) listed.push_back(note.id);
      for (const auto& row : tavi::all(store->searchNotes("-nowhere", request)))
        found.push_back(row.metadata.id);
      EXPECT_EQ(listed, expected) << sort << " " << limit;
      if (sort[0] != 't') {
        EXPECT_EQ(found, expected) << sort << " " << limit;
      }
    }
  }
}

TEST_F(Listing, FiltersByTagsThatNoQueryCanName) {
  const std::string quoted = create("# quoted\n#say \"hi\"#");
  const std::string below = create("# below\n#say \"hi\"/often#");
  create("# say \"hi\"\n#say \"hi\" too#");
  ListRequest request{parseSortCriteria("created:asc")};
  request.tag = "say \"hi\"";
  const auto listed = all(fresh()->listNotesWithContent(request));
  ASSERT_EQ(listed.size(), 2U);
  EXPECT_EQ(listed[0].metadata.id, quoted);
  EXPECT_EQ(listed[1].metadata.id, below);
  EXPECT_EQ(fresh()->listNotes(request)->count(), 2);
}

TEST_F(Listing, KeepsLocationsApart) {
  EXPECT_EQ(titles("modified", INT64_MAX, 0, NoteLocation::trash), "d");
  EXPECT_EQ(titles("modified", INT64_MAX, 0, NoteLocation::archive), "d");
  EXPECT_EQ(titles("modified", INT64_MAX, 0, std::nullopt), "dCba");
  EXPECT_EQ(metadata(ids[3]).location, NoteLocation::trash);
  EXPECT_EQ(metadata(ids[4]).title, "e");
}

TEST_F(Listing, SearchSortsTitlesAsTheUserReadsThem) {
  std::string found;
  const auto store = fresh();
  const ListRequest request{parseSortCriteria("title:asc"), INT64_MAX, 0, NoteLocation::notes};
  for (const auto& row : all(store->searchNotes("-nowhere", request))) found += row.metadata.title;
  EXPECT_EQ(found, "abC");
}

TEST_F(Listing, CountsMatchesInTheRawText) {
  const std::string id = create("# Cats\ncat concat #cat");
  const auto store = fresh();
  const auto rows = all(store->searchNotes("cat", {}));
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].matchCount, 4);
  EXPECT_EQ(all(store->searchNotes("#cat", {})).at(0).matchCount, 0);
  EXPECT_THROW(store->searchNotes("@nosuch", {}), std::invalid_argument);
  lock(id);
  EXPECT_EQ(all(fresh()->searchNotes("@locked or cat", {})).at(0).matchCount, 0);
}

// Whatever is asked, the answer is the same for any text of a locked note.
TEST_F(Reading, TellsNothingOfALockedText) {
  tavimodel::SearchGenerator generate;
  for (int i = 0; i < 60; ++i) create(generate.text());
  otherProgram(
      "INSERT INTO file (note, filename, ocrText) SELECT id, 'a' || id % 3, text FROM note;"
      "UPDATE note SET encrypted = 1 WHERE id % 3 = 0");
  std::vector<std::string> queries;
  for (int i = 0; i < 150; ++i)
    queries.push_back(generate.query() + (i % 2 == 0 ? "or @locked" : ""));
  const auto answers = [&] {
    std::vector<std::string> rows;
    const auto store = fresh();
    for (std::size_t i = 0; i < queries.size(); ++i) {
      const ListRequest request{parseSortCriteria("pinned,title:asc"), i % 3 == 0 ? 7 : INT64_MAX};
      rows.push_back(queries[i]);
      rows.push_back(std::to_string(store->searchNotes(queries[i], request)->count()));
      for (const auto& [note, matches] : all(store->searchNotesWithContent(queries[i], request))) {
        rows.push_back(note.metadata.id + note.content + note.metadata.contentHash +
                       std::to_string(matches) + std::to_string(note.metadata.contentLength) +
                       std::to_string(note.metadata.todos + note.metadata.done) +
                       std::to_string(note.metadata.attachments.size()));
      }
    }
    return rows;
  };
  const std::vector<std::string> before = answers();
  otherProgram(
      "UPDATE note SET text = (SELECT text FROM note n WHERE n.id = note.id - 1) WHERE encrypted;"
      "UPDATE file SET ocrText = (SELECT text FROM note WHERE id = note) WHERE note % 3 = 0");
  EXPECT_EQ(answers(), before);
}

TEST_F(Reading, RefusesEverythingWhileTheApplicationIsLocked) {
  home.lockApplication();
  EXPECT_EQ(refusal([&] { fresh(); }), "app_lock_enabled");
  EXPECT_FALSE(std::filesystem::exists(home.data())) << "nothing was opened";
}

TEST_F(Reading, SaysThatAnUnreadableDatabaseCannotBeOpened) {
  std::filesystem::create_directories(home.data());
  std::ofstream(home.database()) << "not a database, but long enough to have a header, were it one";
  EXPECT_EQ(refusal([&] { fresh(); }), "store_unavailable");
}

}  // namespace
}  // namespace tavi
