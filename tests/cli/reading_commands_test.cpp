#include "command_line.h"

namespace tavi {
namespace {

using testing::CommandLine;

class ReadingCommands : public CommandLine {
 protected:
  ReadingCommands() {
    add("# Mars\nred #planet\nred");
    lock(add("# Venus\nhot"));
    store().moveNote(add("# Pluto\ncold"), NoteLocation::trash);
  }
};

TEST_F(ReadingCommands, ShowPrintsMetadataOrTheWholeNote) {
  EXPECT_EQ(run({"show", "ID-1"}), printed("ID-1\tMars\t#planet\n"));
  EXPECT_EQ(run({"show", "-t", "VENUS", "--fields", "title,hash", "--format=json"}),
            printed("{\"title\":\"Venus\",\"hash\":null}\n"));
  EXPECT_EQ(run({"show", "ID-1", "--fields", "content", "--format", "csv"}),
            printed("content\n\"# Mars\nred #planet\nred\"\n"));
  EXPECT_EQ(run({"show", "ID-2", "--fields", "content"}), refused(1, "Note is locked: ID-2"));
  EXPECT_EQ(run({"show", "ID-9", "--fields", "nosuch"}), refused(1, "Note not found: ID-9"));
  EXPECT_EQ(run({"show", "--fields", "nosuch"}), refused(64, "Note ID or title is required"));
  EXPECT_EQ(run({"show", "ID-1", "--fields", "nosuch"}).exitCode, 64);
}

TEST_F(ReadingCommands, CatPrintsTheTextAsItStands) {
  EXPECT_EQ(run({"cat", "ID-1"}), printed("# Mars\nred #planet\nred"));
  EXPECT_EQ(run({"cat", "--title", "mars", "-o", "12", "-n=6"}), printed("planet"));
  EXPECT_EQ(run({"cat", "ID-1", "--format", "json"}),
            printed("{\"content\":\"# Mars\\nred #planet\\nred\"}\n"));
  EXPECT_EQ(run({"cat", "ID-1", "--limit=-1"}), refused(64, "Limit must be non-negative"));
}

TEST_F(ReadingCommands, ListPrintsRowsOrTheirNumber) {
  EXPECT_EQ(run({"list"}), printed("ID-2\tVenus\t\nID-1\tMars\t#planet\n"));
  EXPECT_EQ(run({"list", "-l", "all", "-s", "title", "-n", "2", "--fields", "title"}),
            printed("Venus\nPluto\n"));
  EXPECT_EQ(run({"list", "-l", "all", "-s", "title", "-n", "1", "-o", "1", "--fields", "title"}),
            printed("Pluto\n"));
  EXPECT_EQ(run({"list", "--tag", "planet", "--fields", "id,content"}),
            printed("ID-1\t# Mars\\nred #planet\\nred\n"));
  EXPECT_EQ(run({"list", "--count", "--fields", "nosuch"}), printed("2\n"));
  EXPECT_EQ(run({"list", "--count", "--offset", "0", "--format", "json"}),
            printed("{\"count\":2}\n"));
  EXPECT_EQ(run({"list", "--count", "--offset", "5"}),
            refused(64, "--count cannot be combined with --limit or --offset"));
}

// Long lists are sorted and written with a second thread, pages by SQL in one.
TEST_F(ReadingCommands, ALongListHasTheRowsOfItsPages) {
  otherProgram(
      "WITH RECURSIVE more(i) AS (SELECT 4 UNION ALL SELECT i + 1 FROM more WHERE i < 9000) "
      "INSERT INTO note (id, title, text, modificationDate, pinned) "
      "SELECT i, 'Title ' || i % 700, 'text', i * 7919 % 3000, i % 50 = 0 FROM more;"
      "INSERT INTO tag (id, title) VALUES (10, 'a'), (12, 'b/c'), (-3, 'd e'), (1 << 40, 'f');"
      "INSERT INTO noteTag SELECT note.id, tag.id FROM note, tag "
      "WHERE note.id > 3 AND tag.id <> 1 AND (note.id + tag.id) % 7 < 4;"
      "INSERT INTO noteTag SELECT id, 11 FROM note WHERE id % 3 = 0");  // there is no such tag
  for (const char* sort : {"pinned,modified", "title"}) {
    std::string pages;
    for (int offset = 0; offset < 9000; offset += 1000) {
      pages += run({"list", "-s", sort, "-n", "1000", "-o", std::to_string(offset)}).output;
    }
    EXPECT_TRUE(run({"list", "-s", sort}) == printed(pages)) << sort;
  }
}

TEST_F(ReadingCommands, ListAndSearchSayWhenTheyFoundNothing) {
  for (const std::vector<std::string>& search :
       {std::vector<std::string>{"list", "--location", "archive"}, {"search", "none"}}) {
    auto arguments = search;
    const Result quiet = run(arguments);
    EXPECT_EQ(quiet, (Result{0, "", "No notes found.\n"}));
    arguments.insert(arguments.end(), {"--format", "json"});
    EXPECT_EQ(run(arguments), printed("[]\n"));
  }
  EXPECT_EQ(run({"list", "-n", "0", "--format", "json"}), printed(""));
  EXPECT_EQ(run({"search", "red", "-n", "0"}), printed(""));
}

TEST_F(ReadingCommands, SearchTakesItsQueryInEitherForm) {
  EXPECT_EQ(run({"search", "red"}), printed("ID-1\tMars\t#planet\t2\n"));
  EXPECT_EQ(run({"search", "--query", "red", "--fields", "content,matches"}),
            printed("# Mars\\nred #planet\\nred\t2\n"));
  EXPECT_EQ(run({"search", "red", "--count"}), printed("1\n"));
  EXPECT_EQ(run({"search", "-q", "-venus", "--count"}), printed("1\n"));
  EXPECT_EQ(run({"search"}), refused(64, "Query is required"));
  EXPECT_EQ(run({"search", "red", "--query", "red"}),
            refused(64, "Specify the query as a positional argument or --query, not both"));
}

TEST_F(ReadingCommands, SearchInFindsWithinOneNote) {
  EXPECT_EQ(run({"search-in", "ID-1", "--string", "RED", "--context", "0"}),
            printed("7\tred\n19\tred\n"));
  EXPECT_EQ(run({"search-in", "ID-1", "-s", "\\nred", "--count"}), printed("2\n"));
  EXPECT_EQ(run({"search-in", "ID-1", "-s", "--string"}), printed(""));
  EXPECT_EQ(run({"search-in", "ID-1"}), refused(64, "--string is required"));
  EXPECT_EQ(run({"search-in", "ID-1", "-s", "x", "--count", "-n", "1"}),
            refused(64, "--count cannot be combined with --limit"));
}

}  // namespace
}  // namespace tavi
