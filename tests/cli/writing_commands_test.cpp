#include "command_line.h"

namespace tavi {
namespace {

using testing::CommandLine;

class WritingCommands : public CommandLine {
 protected:
  void SetUp() override { store.add("Mars", "red planet"); }
  std::string text() { return store.find("ID-1").content; }
};

TEST_F(WritingCommands, CreatePrintsTheNewNote) {
  EXPECT_EQ(run({"create", "Venus", "-c", "hot\\ncloudy", "--tags", " #planet, ,hot"}),
            printed("ID-2\tVenus\t#planet,#hot\n"));
  EXPECT_EQ(store.find("ID-2").content, "# Venus\nhot\ncloudy");

  EXPECT_EQ(run({"create", "--content", "# Io\nmoon", "--format", "json", "--fields", "title"}),
            printed("{\"title\":\"# Io\"}\n"));
  EXPECT_EQ(run({"create", "MARS", "--if-not-exists", "--fields", "id"}), printed("ID-1\n"));
  EXPECT_EQ(run({"create"}), refused(64, "Provide a title, content, or both"));
}

TEST_F(WritingCommands, CreateHasWrittenWhenAFieldIsUnknown) {
  EXPECT_EQ(run({"create", "Venus", "--fields", "nosuch"}).exitCode, 64);
  EXPECT_EQ(store.find("ID-2").metadata.title, "Venus");
}

TEST_F(WritingCommands, TextComesFromTheOptionOrFromStdin) {
  input = "a\\tb";
  EXPECT_EQ(run({"append", "ID-1"}), printed(""));
  EXPECT_EQ(text(), "red planeta\\tb");  // not unescaped
  EXPECT_EQ(run({"append", "ID-1", "-c", ""}), printed(""));
  EXPECT_EQ(text(), "red planeta\\tb");
  EXPECT_EQ(run({"append", "ID-1", "-c", "\\t\\q\\", "--position", "beginning"}), printed(""));
  EXPECT_EQ(text(), "\t\\q\\red planeta\\tb");
  EXPECT_EQ(run({"append", "ID-1", "--position", "top"}), refused(64, "Invalid position: top"));

  for (const std::optional<std::string>& nothing : {std::optional<std::string>(), {""}, {"\xff"}}) {
    input = nothing;
    EXPECT_EQ(run({"overwrite", "ID-1"}), printed(""));
    EXPECT_EQ(text(), "");
    input = "again";
    run({"overwrite", "ID-1"});
  }
  input = "\xff";
  EXPECT_EQ(run({"create"}), refused(64, "Provide a title, content, or both"));
}

TEST_F(WritingCommands, OverwriteGuardsTheTextAndTheAttachments) {
  EXPECT_EQ(run({"overwrite", "ID-1", "--base", "0000000", "-c", "x"}),
            refused(1, "Note has changed since last read — read again before writing"));
  store.find("ID-1").files = {{"a.png", ""}};
  EXPECT_EQ(run({"overwrite", "ID-1", "-c", "x"}).exitCode, 1);
  EXPECT_EQ(text(), "red planet");
  EXPECT_EQ(run({"overwrite", "ID-1", "-c", "x", "--force"}), printed(""));
  EXPECT_EQ(text(), "x");
}

TEST_F(WritingCommands, EditPairsFindsWithValues) {
  EXPECT_EQ(run({"edit", "ID-1", "--find", "red", "--replace", "-\\n-"}), printed(""));
  EXPECT_EQ(text(), "-\n- planet");
  EXPECT_EQ(run({"edit", "-t", "mars", "--find", "\\n", "--find", "PLANET", "--insert-before", "1",
                 "--insert-before", "2", "--ignore-case"}),
            printed(""));
  EXPECT_EQ(text(), "-1\n- 2planet");
  EXPECT_EQ(run({"edit", "ID-1", "--find", "-", "--insert-after", "!", "--all"}), printed(""));
  EXPECT_EQ(text(), "-!1\n-! 2planet");
}

TEST_F(WritingCommands, EditRefusesWhatDoesNotPair) {
  for (const auto& [arguments, message] : {
           std::pair{std::vector<std::string>{}, "--find is required"},
           {{"--find", "a"}, "--replace, --insert-after, or --insert-before is required"},
           {{"--find", "a", "--insert-after", "", "--replace", "b"},
            "--replace, --insert-after are mutually exclusive"},
           {{"--find", "a", "--find", "b", "--replace", "c"},
            "--find count (2) must equal --replace count (1)"},
       }) {
    std::vector<std::string> line{"edit", "ID-1"};
    line.insert(line.end(), arguments.begin(), arguments.end());
    EXPECT_EQ(run(line), refused(64, message));
  }
}

TEST_F(WritingCommands, EditSuggestsToIgnoreTheCase) {
  const std::string notFound = "String not found in note ID-1";
  EXPECT_EQ(run({"edit", "ID-1", "--find", "RED", "--replace", ""}),
            refused(1, notFound + " (try --ignore-case)"));
  EXPECT_EQ(run({"edit", "ID-1", "--find", "blue", "--replace", "", "--ignore-case"}),
            refused(1, notFound));
  EXPECT_EQ(run({"edit", "ID-1", "--find", "e", "--replace", ""}).exitCode, 1);
}

TEST_F(WritingCommands, OnlyTheFlagKeepsTheModificationDate) {
  run({"append", "ID-1", "-c", "x"});
  EXPECT_FALSE(opened->preserveModificationDate);
  for (const std::vector<std::string>& line :
       {std::vector<std::string>{"append", "ID-1", "-c", "x"},
        {"overwrite", "ID-1", "-c", "x"},
        {"edit", "ID-1", "--find", "x", "--replace", "y"},
        {"attachments", "add", "ID-1", "-f", "a.png"},
        {"attachments", "delete", "ID-1", "-f", "a.png"}}) {
    auto arguments = line;
    arguments.push_back("--no-update-modified");
    input = "data";
    EXPECT_EQ(run(arguments), printed(""));
    EXPECT_TRUE(opened->preserveModificationDate);
  }
}

TEST_F(WritingCommands, NotesMoveAndOpen) {
  EXPECT_EQ(run({"trash", "-t", "mars"}), printed(""));
  EXPECT_EQ(store.find("ID-1").metadata.location, NoteLocation::trash);
  EXPECT_EQ(run({"archive", "ID-1"}), printed(""));
  EXPECT_EQ(store.find("ID-1").metadata.location, NoteLocation::archive);
  EXPECT_EQ(run({"restore", "ID-1"}), printed(""));
  EXPECT_EQ(store.find("ID-1").metadata.location, NoteLocation::notes);
  EXPECT_EQ(run({"open", "ID-1", "--float", "--edit", "--header", "A b"}), printed(""));
  EXPECT_EQ(openedURL, "tavi://x-callback-url/open-note?id=ID-1&header=A%20b&edit=yes&float=yes");
}

}  // namespace
}  // namespace tavi
