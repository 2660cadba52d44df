#include "mcp/tool_registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "json/json_reader.h"
#include "support/store_test.h"

namespace tavi::mcp {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Tools : public StoreTest {
 protected:
  Tools() { add("# Mars\ndust\n#planet"); }
  const MCPTool& named(std::string_view name) {
    return *std::ranges::find(tools, name, [](const MCPTool& tool) { return tool.metadata.name; });
  }
  /// The answer's JSON, or what the tool failed with.
  std::string call(std::string_view name, std::string_view arguments) try {
    const ResultWriter answer = named(name).call(parseJSON(arguments), store());
    StringSink sink;
    JSONWriter writer(sink, JSONStyle::wire);
    answer(writer);
    return sink.take();
  } catch (const std::exception& error) {
    return error.what();
  }
  /// The arguments with the note's id among them.
  static std::string with(std::string_view more) {
    return R"({"id":"ID-1")" + std::string(more.empty() ? "" : ",") + std::string(more) + "}";
  }

  const std::vector<MCPTool> tools = MCPToolRegistry::tools();
};

TEST_F(Tools, StandInTheirOrderWithTheirHints) {
  std::vector<std::string> table;
  for (const auto& tool : tools) {
    const OperationMetadata& m = tool.metadata;
    table.push_back(std::string(m.name) + (m.readOnlyHint ? " 1" : " 0") +
                    (m.destructiveHint ? "1" : "0") + (m.idempotentHint ? "1" : "0"));
  }
  // Read-only, destructive, idempotent.
  EXPECT_THAT(table,
              ElementsAre("create_note 000", "get_note 101", "open_note 101",
                          "read_note_content 101", "list_notes 101", "search_notes 101",
                          "search_in_note 101", "append_to_note 000", "overwrite_note 011",
                          "edit_note 010", "list_pins 101", "add_pins 001", "remove_pins 011",
                          "archive_note 011", "trash_note 011", "restore_note 001", "list_tags 101",
                          "add_tags 001", "remove_tags 011", "rename_tag 011", "delete_tag 011",
                          "list_attachments 101", "delete_attachment 011", "read_attachment 101"));
}

TEST_F(Tools, NameTheFieldThatIsWrong) {
  const std::tuple<const char*, const char*, const char*> table[] = {
      {"search_notes", "{}", "missing required field: query"},
      {"search_notes", R"({"query":" \n"})", "Query is required"},
      {"edit_note", R"({"edits":[{"find":"a","replace":"b"},{}]})",
       "missing required field: edits.1.find"},
      {"add_tags", R"({"id":"1"})", "Provide at least one tag"},
      {"add_tags", R"({"id":"1","tags":null})", "Provide at least one tag"},
      {"get_note", R"({"unknown":1})", "Note ID or title is required"},
  };
  for (const auto& [name, arguments, message] : table)
    EXPECT_THAT(call(name, arguments), StartsWith(message)) << name << " " << arguments;
}

TEST_F(Tools, RefuseToOverwriteWithoutAHashBeforeTheyLook) {
  EXPECT_THAT(call("overwrite_note", R"({"content":"x"})"),
              StartsWith("baseHash is required for overwrite_note via MCP. Read the note first"));
  EXPECT_THAT(call("overwrite_note", R"({"content":"x","baseHash":null,"id":"a","title":"b"})"),
              StartsWith("baseHash is required"));
  EXPECT_EQ(text("ID-1"), "# Mars\ndust\n#planet");
}

TEST_F(Tools, LoseOnlyADeclaredAttachment) {
  store().addAttachment("ID-1", "x", "a.bin");
  const std::string write = R"("content":"gone","baseHash":")" + metadata("ID-1").contentHash + '"';
  EXPECT_THAT(call("overwrite_note", with(write)), StartsWith("Write would remove attachment"));
  EXPECT_THAT(call("overwrite_note", with(write + R"(,"expectedRemovedAttachments":["a.bin"])")),
              HasSubstr(R"("attachments":[])"));
}

TEST_F(Tools, WrapTheirAnswersInObjects) {
  store().addAttachment("ID-1", std::string("\x00\xff\xfe/", 4), "a.bin");
  EXPECT_THAT(call("create_note", R"({"title":"Venus","content":"hot"})"),
              StartsWith(R"({"attachments":[],"content":")"));
  EXPECT_THAT(call("get_note", with("")), StartsWith(R"({"metadata":{"attachments":)"));
  EXPECT_THAT(call("get_note", with(R"("includeContent":true)")), StartsWith(R"({"content":")"));
  EXPECT_THAT(call("read_note_content", with(R"("limit":6)")), R"({"content":"# Mars"})");
  EXPECT_THAT(call("list_notes", "{}"), StartsWith(R"({"metadata":[{"attachments":)"));
  EXPECT_THAT(call("list_notes", R"({"includeContent":true})"), StartsWith(R"({"notes":[{)"));
  EXPECT_EQ(call("list_notes", R"({"limit":0})"), R"({"metadata":[]})");
  EXPECT_EQ(call("search_notes", R"({"query":"x","limit":0})"), R"({"results":[]})");
  EXPECT_EQ(call("search_notes", R"({"query":"x","limit":0,"includeContent":true})"),
            R"({"resultsWithContent":[]})");
  EXPECT_EQ(call("search_in_note", with(R"("string":"")")), R"({"matches":[]})");
  EXPECT_EQ(call("list_tags", with("")), R"({"tags":["planet"]})");
  EXPECT_EQ(call("add_pins", with(R"("targets":"global")")), R"({"pins":["global"]})");
  EXPECT_EQ(call("list_pins", "{}"), R"({"pins":["global"]})");
  EXPECT_EQ(call("rename_tag", R"({"old":"planet","new":"world"})"), R"({"notesUpdated":1})");
  EXPECT_EQ(call("delete_tag", R"({"tag":"nope"})"), R"({"notesUpdated":0})");
  EXPECT_EQ(call("list_attachments", with("")),
            R"({"attachments":[{"filename":"a.bin","size":4}]})");
  EXPECT_EQ(call("read_attachment", with(R"("filename":"a.bin")")), R"({"data":"AP\/+Lw=="})");
  EXPECT_EQ(call("archive_note", with("")), R"({"location":"archive"})");
}

TEST_F(Tools, EncodeLargeAttachmentsWithoutASeam) {
  std::string bytes;
  for (int i = 0; i < 100'000; ++i) bytes += static_cast<char>(i * 7);
  store().addAttachment("ID-1", bytes, "a.bin");
  const auto answer = parseJSON(call("read_attachment", with(R"("filename":"a.bin")")));
  const std::string text(answer.at("data").as_string());
  EXPECT_EQ(text.size(), 133'336u);
  EXPECT_EQ(text.find('='), 133'334u);
}

}  // namespace
}  // namespace tavi::mcp
