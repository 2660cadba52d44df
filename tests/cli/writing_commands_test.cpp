#include "command_line.h"

namespace tavi {
namespace {

using testing::CommandLine;

class WritingCommands : public CommandLine {
 protected:
  WritingCommands() { add("# Mars\nred planet"); }
  std::string mars() { return text("ID-1"); }
};

TEST_F(WritingCommands, CreatePrintsTheNewNote) {
  EXPECT_EQ(run({"create", "Venus", "-c", "hot\\ncloudy", "--tags", " #planet, ,hot", "--fields",
                 "title,tags,content"}),
            printed("Venus\t#hot,#planet\t# Venus\\n\\nhot\\ncloudy\\n\\n#planet #hot\n"));
  EXPECT_EQ(run({"create", "--content", "# Io\nmoon", "--tags", "a", "--format", "json", "--fields",
                 "title,tags"}),
            printed("{\"title\":\"Io\",\"tags\":[\"#a\"]}\n"));
  EXPECT_EQ(run({"create", "MARS", "--if-not-exists", "--fields", "id"}), printed("ID-1\n"));
  EXPECT_EQ(run({"create"}), refused(64, "Provide a title, content, or both"));
}

TEST_F(WritingCommands, CreateHasWrittenWhenAFieldIsUnknown) {
  EXPECT_EQ(run({"create", "Venus", "--fields", "nosuch"}).exitCode, 64);
  EXPECT_EQ(store().noteWithTitle("Venus").content, "# Venus");
}

TEST_F(WritingCommands, TextComesFromTheOptionOrFromStdin) {
  input = "a\\tb";
  EXPECT_EQ(run({"append", "ID-1"}), printed(""));
  EXPECT_EQ(mars(), "# Mars\nred planet\na\\tb");  // not unescaped
  EXPECT_EQ(run({"append", "ID-1", "-c", ""}), printed(""));
  EXPECT_EQ(run({"append", "ID-1", "-c", "x\\t\\q\\", "--position", "beginning"}), printed(""));
  EXPECT_EQ(mars(), "# Mars\nx\t\\q\\\nred planet\na\\tb");
  EXPECT_EQ(run({"append", "ID-1", "--position", "top"}), refused(64, "Invalid position: top"));

  for (const std::optional<std::string>& nothing : {std::optional<std::string>(), {""}, {"\xff"}}) {
    input = nothing;
    EXPECT_EQ(run({"overwrite", "ID-1"}), printed(""));
    EXPECT_EQ(mars(), "");
    input = "again";
    run({"overwrite", "ID-1"});
  }
  input = "\xff";
  EXPECT_EQ(run({"create"}), refused(64, "Provide a title, content, or both"));
}

TEST_F(WritingCommands, OverwriteGuardsTheTextAndTheAttachments) {
  EXPECT_EQ(run({"overwrite", "ID-1", "--base", "0000000", "-c", "x"}),
            refused(1, "Note has changed since last read — read again before writing"));
  store().addAttachment("ID-1", "bytes", "a.png");
  const std::string before = mars();
  EXPECT_EQ(run({"overwrite", "ID-1", "-c", "x"}).exitCode, 1);
  EXPECT_EQ(mars(), before);
  EXPECT_EQ(run({"edit", "ID-1", "--find", "(a.png)", "--replace", ""}).exitCode, 1);
  EXPECT_EQ(mars(), before);
  EXPECT_EQ(run({"edit", "ID-1", "--find", "(a.png)", "--replace", "", "--force"}), printed(""));
  store().addAttachment("ID-1", "bytes", "b.png");
  EXPECT_EQ(run({"overwrite", "ID-1", "-c", "x", "--force"}), printed(""));
  EXPECT_EQ(mars(), "x");
}

TEST_F(WritingCommands, EditPairsFindsWithValues) {
  EXPECT_EQ(run({"edit", "ID-1", "--find", "red", "--replace", "-\\n-"}), printed(""));
  EXPECT_EQ(mars(), "# Mars\n-\n- planet");
  EXPECT_EQ(run({"edit", "-t", "mars", "--find", "-\\n", "--find", "PLANET", "--insert-before", "1",
                 "--insert-before", "2", "--ignore-case"}),
            printed(""));
  EXPECT_EQ(mars(), "# Mars\n1-\n- 2planet");
  EXPECT_EQ(run({"edit", "ID-1", "--find", "-", "--insert-after", "!", "--all"}), printed(""));
  EXPECT_EQ(mars(), "# Mars\n1-!\n-! 2planet");
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
  EXPECT_EQ(run({"edit", "ID-1", "--find", "e", "--replace", ""}).exitCode, 1);  // twice
}

TEST_F(WritingCommands, OnlyTheFlagKeepsTheModificationDate) {
  const auto modified = [&] { return metadata("ID-1").modified.seconds; };
  const double before = modified();
  input = "data";
  for (const std::vector<std::string>& line :
       {std::vector<std::string>{"append", "ID-1", "-c", "x"},
        {"overwrite", "ID-1", "-c", "x"},
        {"edit", "ID-1", "--find", "x", "--replace", "y"},
        {"attachments", "add", "ID-1", "-f", "a.png"},
        {"attachments", "delete", "ID-1", "-f", "a.png"}}) {
    auto arguments = line;
    arguments.push_back("--no-update-modified");
    EXPECT_EQ(run(arguments), printed(""));
    EXPECT_EQ(modified(), before) << line[0];
  }
  run({"append", "ID-1", "-c", "x"});
  EXPECT_GT(modified(), before);
}

TEST_F(WritingCommands, NotesMoveAndOpenAlsoWhenLocked) {
  lock("ID-1");
  for (const auto& [line, location] :
       {std::pair{std::vector<std::string>{"trash", "-t", "mars"}, NoteLocation::trash},
        {{"archive", "ID-1"}, NoteLocation::archive},
        {{"restore", "ID-1"}, NoteLocation::notes}}) {
    EXPECT_EQ(run(line), printed(""));
    EXPECT_EQ(metadata("ID-1").location, location);
  }
  EXPECT_EQ(run({"open", "ID-1", "--float", "--edit", "--header", "A b"}), printed(""));
  EXPECT_EQ(openedURL, "tavi://x-callback-url/open-note?id=ID-1&header=A%20b&edit=yes&float=yes");
}

}  // namespace
}  // namespace tavi
