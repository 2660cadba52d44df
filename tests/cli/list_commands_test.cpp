#include "command_line.h"

namespace tavi {
namespace {

using testing::CommandLine;

/// The commands for tags, pins and attachments.
class ListCommands : public CommandLine {
 protected:
  ListCommands() { add("# Mars\nred\n#a #multi word#"); }
  Texts tags() { return metadata("ID-1").tags; }
};

TEST_F(ListCommands, TagsAreListedAlsoOfLockedNotes) {
  lock("ID-1");
  for (const auto& arguments :
       {Texts{"tags"}, {"tags", "list"}, {"tags", "ID-1"}, {"tags", "list", "-t", "mars"}})
    EXPECT_EQ(run(arguments), printed("#a\n#multi word#\n"));
  EXPECT_EQ(run({"tags", "list", "--count", "--format", "csv"}), printed("count\n2\n"));
  EXPECT_EQ(run({"tags", "list", "ID-1", "-t", "Mars"}),
            refused(64, "Provide note ID or title, not both"));
}

TEST_F(ListCommands, TagsAreAddedAndRemovedByIdOrTitle) {
  EXPECT_EQ(run({"tags", "add", "ID-1", "b", "#c"}), printed(""));
  EXPECT_EQ(run({"tags", "add", "d", "--title", "mars", "e"}), printed(""));
  EXPECT_EQ(run({"tags", "remove", "-t", "Mars", "multi word"}), printed(""));
  EXPECT_EQ(tags(), (Texts{"a", "b", "c", "d", "e"}));
  EXPECT_EQ(run({"tags", "add", "ID-1"}), refused(64, "Provide at least one tag"));
}

TEST_F(ListCommands, TagsAreRenamedAndDeleted) {
  EXPECT_EQ(run({"tags", "rename", "a", "--to", "b"}), printed(""));
  EXPECT_EQ(run({"tags", "delete", "--name", "multi word"}), printed(""));
  EXPECT_EQ(tags(), Texts{"b"});
  add("# Venus\n#c");
  EXPECT_EQ(run({"tags", "rename", "b", "c"}).exitCode, 1);
  EXPECT_EQ(run({"tags", "rename", "b", "c", "--force"}), printed(""));
  EXPECT_EQ(run({"tags", "rename", "--from", "a"}), refused(64, "New tag name is required"));
  EXPECT_EQ(run({"tags", "rename", "--to", "a"}), refused(64, "Old tag name is required"));
  EXPECT_EQ(run({"tags", "delete"}), refused(64, "Tag name is required"));
  EXPECT_EQ(run({"tags", "delete", "#"}), refused(64, "Tag must not be empty"));
}

TEST_F(ListCommands, PinsAreListedAddedAndRemoved) {
  EXPECT_EQ(run({"pin", "add", "ID-1", "global", "multi word"}), printed(""));
  EXPECT_EQ(run({"pin"}), printed("global\n#multi word#\n"));
  EXPECT_EQ(run({"pin", "remove", "--title", "Mars", "global"}), printed(""));
  EXPECT_EQ(run({"pin", "list", "ID-1", "--format", "json"}),
            printed("[{\"pin\":\"#multi word#\"}]\n"));
  EXPECT_EQ(run({"pin", "add", "ID-1", "a", "b", "c"}), refused(1, "Tags not found: b, c"));
}

TEST_F(ListCommands, AttachmentsComeFromStdinAndGoToStdout) {
  const std::string bytes("\0\xff\n", 3);
  input = bytes;
  EXPECT_EQ(run({"attachments", "add", "ID-1", "--filename", "a.bin"}), printed(""));
  EXPECT_EQ(run({"attachments", "ID-1"}), printed("a.bin\t3\n"));
  EXPECT_EQ(run({"attachments", "save", "ID-1", "-f", "a.bin"}), printed(bytes));
  outputIsTerminal = true;
  EXPECT_EQ(
      run({"attachments", "save", "ID-1", "-f", "a.bin"}),
      refused(
          64,
          "Redirect stdout to a file: tavicli attachments save <id> --filename <name> > <file>"));
  EXPECT_EQ(run({"attachments", "save", "ID-1", "-f", "a.bin", "--format", "json"}),
            printed("{\"filename\":\"a.bin\",\"size\":3,\"base64\":\"AP8K\"}\n"));
  EXPECT_EQ(run({"attachments", "delete", "ID-1", "-f", "a.bin"}), printed(""));
  EXPECT_EQ(run({"attachments", "list", "ID-1", "--format", "csv"}), printed("filename,size\n"));
}

TEST_F(ListCommands, AttachmentsWantANameAndData) {
  for (const char* command : {"add", "delete", "save"})
    EXPECT_EQ(run({"attachments", command, "ID-1"}), refused(64, "--filename is required"));
  const std::string pipe =
      "Pipe data via stdin: cat <file> | tavicli attachments add <id> --filename <name>";
  EXPECT_EQ(run({"attachments", "add", "ID-1", "-f", "a"}), refused(64, pipe));
  input = "";
  EXPECT_EQ(run({"attachments", "add", "ID-1", "-f", "a"}), refused(64, pipe));
  EXPECT_EQ(run({"attachments"}), refused(64, "Note ID or title is required"));
}

}  // namespace
}  // namespace tavi
