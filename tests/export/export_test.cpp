#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <set>
#include <sstream>

#include "export/exporter.h"
#include "store/store_fixture.h"
#include "support/program.h"

namespace tavi::exporting {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

class Exporting : public StoreTest {
 protected:
  ExportReport run() { return Exporter(folder).run(*fresh()); }

  std::string read(const std::string& name) {
    std::ostringstream bytes;
    bytes << std::ifstream(folder / name, std::ios::binary).rdbuf();
    return bytes.str();
  }
  void write(const std::string& name, const std::string& bytes) {
    std::ofstream(folder / name, std::ios::binary) << bytes;
  }

  /// All files except those in hidden folders.
  std::set<std::string> files() {
    std::set<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      const std::string name = entry.path().lexically_relative(folder).string();
      if (entry.is_regular_file() && !name.starts_with('.')) names.insert(name);
    }
    return names;
  }

  fs::path folder = home.path() / "export";
};

TEST_F(Exporting, GivesNotesTheNamesThatAPersonWould) {
  const std::string mars = create("# Mars\n");
  fresh()->addAttachment(mars, "PNG", "map.png");
  create("# mars\n");
  create("# A/B?\n");
  create("");
  fresh()->moveNote(create("# Old"), NoteLocation::archive);
  fresh()->moveNote(create("# Old"), NoteLocation::trash);
  run();
  EXPECT_THAT(files(), UnorderedElementsAre("Mars/Mars.md", "Mars/map.png", "mars 2.md", "A-B.md",
                                            "Untitled.md", "Archive/Old.md", "Trash/Old.md"));
}

TEST_F(Exporting, SaysEverythingOfANoteAboveItsText) {
  const std::string id = create("# Mars\n\nRed #space\n");
  fresh()->pinNote(id);
  otherProgram("UPDATE note SET creationDate = 1000000000.5, modificationDate = NULL");
  run();
  EXPECT_EQ(read("Mars.md"), "---\ntavi: 1\nid: " + id +
                                 "\ncreated: 2001-09-09T01:46:40.500Z\nplace: notes\ntags: "
                                 "[\"space\"]\npins: [\"global\"]\n---\n# Mars\n\nRed #space\n");
  lock(id);
  run();
  EXPECT_THAT(read("Mars.md"), HasSubstr("locked: true\ntitle: Mars\n"));
  EXPECT_THAT(read("Mars.md"), testing::EndsWith("---\n"));
}

TEST_F(Exporting, WritesOnlyWhatHasChangedAndKeepsNames) {
  const std::string one = create("# Same");
  const std::string two = create("# Same");
  create("# Gone");
  run();
  const auto stays = fs::last_write_time(folder / "Same.md");
  fresh()->insertText(two, "more", InsertPosition::end);
  otherProgram("DELETE FROM note WHERE title = 'Gone'");
  otherProgram("UPDATE note SET creationDate = 1 WHERE uniqueIdentifier = '" + two + "'");
  const ExportReport report = run();
  EXPECT_EQ(report.written, 1U);
  EXPECT_EQ(report.movedAway, 1U);
  EXPECT_EQ(fs::last_write_time(folder / "Same.md"), stays);
  EXPECT_THAT(read("Same 2.md"), HasSubstr("more"));
  EXPECT_THAT(files(), UnorderedElementsAre("Same.md", "Same 2.md"));

  otherProgram("DELETE FROM note WHERE uniqueIdentifier = '" + one + "'");
  fresh()->overwriteNote(two, "# Renamed", {}, {});
  run();
  EXPECT_THAT(files(), UnorderedElementsAre("Renamed.md"));
}

TEST_F(Exporting, WritesOverNothingThatIsNotItsOwn) {
  const std::string id = create("# One");
  create("# Two");
  fs::create_directory(folder);
  write("Two.md", "the user's own");
  run();
  EXPECT_THAT(files(), UnorderedElementsAre("One.md", "Two.md", "Two 2.md"));
  EXPECT_EQ(read("Two.md"), "the user's own");

  write("One.md", read("One.md") + "edited by hand");
  fresh()->insertText(id, "edited in the store", InsertPosition::end);
  ExportReport report = run();
  ASSERT_EQ(report.leftAsTheyAre.size(), 1U);
  EXPECT_EQ(report.leftAsTheyAre[0].path, "One.md");
  EXPECT_THAT(read("One.md"), HasSubstr("edited by hand"));

  fresh()->overwriteNote(id, "# Renamed", {}, {});
  report = run();
  EXPECT_EQ(report.leftAsTheyAre.size(), 1U) << "neither moved away nor removed";
  EXPECT_THAT(read("One.md"), HasSubstr("edited by hand"));

  fs::remove(folder / "Renamed.md");
  fs::create_symlink("Two.md", folder / "Renamed.md");
  run();
  EXPECT_EQ(read("Two.md"), "the user's own") << "no link is followed";
}

TEST_F(Exporting, KnowsItsFilesAfterAKill) {
  for (int i = 0; i < 60; ++i) create("# Note " + std::to_string(i));
  for (int round = 0; round < 20; ++round) {
    otherProgram("UPDATE note SET text = text || ' more', modificationDate = " +
                 std::to_string(round));
    support::runAndKill(std::vector<std::string>{folder}, "/dev/null", 4000 * round,
                        EXPORT_PROGRAM);
  }
  const ExportReport report = run();
  EXPECT_TRUE(report.leftAsTheyAre.empty()) << report.text();
  EXPECT_EQ(files().size(), 60U);
}

TEST_F(Exporting, CommitsEachRun) {
  if (support::runProgram({"--version"}, {}, "/usr/bin/git").exitCode != 0)
    GTEST_FAIL() << "no git";
  const auto exportNotes = [&] {
    return support::runProgram({"--git", folder}, {}, EXPORT_PROGRAM);
  };
  const auto git = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"-C", folder});
    return support::runProgram(arguments, {}, "/usr/bin/git").output;
  };
  const std::string id = create("# One\nfirst");
  EXPECT_EQ(exportNotes().exitCode, 0);
  exportNotes();
  fresh()->overwriteNote(id, "# One\nsecond", {}, {});
  EXPECT_EQ(exportNotes().exitCode, 0);
  EXPECT_EQ(git({"rev-list", "--count", "HEAD"}), "2\n") << "nothing new is no commit";
  EXPECT_EQ(git({"ls-files"}), ".gitattributes\nOne.md\n");
  EXPECT_THAT(git({"show", "HEAD~:One.md"}), HasSubstr("first"));
}

}  // namespace
}  // namespace tavi::exporting
