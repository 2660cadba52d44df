#include "operations/operation.h"

#include <gtest/gtest.h>

#include <boost/json/value.hpp>
#include <set>
#include <string>

#include "json/json_reader.h"
#include "json/json_writer.h"
#include "operations/attachment_operations.h"
#include "operations/location_operations.h"
#include "operations/pin_operations.h"
#include "operations/read_operations.h"
#include "operations/tag_operations.h"
#include "operations/write_operations.h"
#include "refusal.h"

namespace tavi {
namespace {

using testing::refusal;

template <class... Operations>
struct OperationList {
  template <class Visit>
  static void forEach(const Visit& visit) {
    (visit.template operator()<Operations>(), ...);
  }
};
using AllOperations =
    OperationList<GetNoteOp, ReadNoteContentOp, ListNotesOp, SearchNotesOp, SearchInNoteOp,
                  CreateNoteOp, AppendToNoteOp, EditNoteOp, OverwriteNoteOp, TrashNoteOp,
                  ArchiveNoteOp, RestoreNoteOp, OpenNoteOp, ListAttachmentsOp, AddAttachmentOp,
                  DeleteAttachmentOp, ReadAttachmentOp, ListTagsOp, AddTagsOp, RemoveTagsOp,
                  RenameTagOp, DeleteTagOp, ListPinsOp, AddPinsOp, RemovePinsOp>;

TEST(Operations, DescribeThemselvesInFull) {
  std::set<std::string_view> names;
  AllOperations::forEach([&]<class Operation>() {
    const OperationMetadata& metadata = Operation::metadata;
    EXPECT_TRUE(names.insert(metadata.name).second) << metadata.name;
    EXPECT_FALSE(metadata.title.empty()) << metadata.name;
    EXPECT_FALSE(metadata.abstract.empty()) << metadata.name;
    EXPECT_FALSE(metadata.description.empty()) << metadata.name;
    EXPECT_FALSE(metadata.readOnlyHint && metadata.destructiveHint) << metadata.name;
  });
  EXPECT_EQ(names.size(), 25U);
}

TEST(Operations, DescribeEveryFieldOnceAndLimitIntegersOnly) {
  AllOperations::forEach([]<class Operation>() {
    std::set<std::string_view> names;
    for (const FieldSchema& field : fieldSchemas<Operation>()) {
      const std::string where =
          std::string(Operation::metadata.name) + "." + std::string(field.doc.name);
      EXPECT_TRUE(names.insert(field.doc.name).second) << where;
      EXPECT_FALSE(field.doc.description.empty()) << where;
      EXPECT_EQ(field.doc.minimum.has_value(), field.type == FieldType::integer) << where;
      EXPECT_TRUE(!field.arrayItemType || field.type == FieldType::array) << where;
    }
  });
}

std::string written(const JSONValue& value) {
  StringSink sink;
  JSONWriter(sink, JSONStyle::commandLine).value(value);
  return sink.take();
}

TEST(InputSchema, IsMadeFromTheTable) {
  EXPECT_EQ(written(inputSchema<DeleteTagOp>()),
            R"({"type":"object","properties":{"tag":{"type":"string","description":)"
            R"("Tag name to delete from all notes. Surrounding # and whitespace are stripped."}},)"
            R"("additionalProperties":false,"required":["tag"]})");
  const JSONValue& context = *inputSchema<SearchInNoteOp>().find("properties")->find("context");
  EXPECT_EQ(*context.find("type"), JSONValue("integer"));
  EXPECT_EQ(*context.find("minimum"), JSONValue(0));
  const JSONValue& edits = *inputSchema<EditNoteOp>().find("properties")->find("edits");
  EXPECT_EQ(*edits.find("type"), JSONValue("array"));
  EXPECT_EQ(edits.find("items"), nullptr);
}

TEST(InputSchema, CallsRequiredWhatACallerMustGive) {
  const auto required = []<class Operation>() {
    const JSONValue* names = inputSchema<Operation>().find("required");
    return names ? written(*names) : "none";
  };
  EXPECT_EQ(required.operator()<GetNoteOp>(), "none");
  EXPECT_EQ(required.operator()<CreateNoteOp>(), "none");
  EXPECT_EQ(required.operator()<SearchNotesOp>(), R"(["query"])");
  EXPECT_EQ(required.operator()<OverwriteNoteOp>(), R"(["content","baseHash"])");
  EXPECT_EQ(required.operator()<EditNoteOp>(), R"(["edits"])");
  EXPECT_EQ(required.operator()<AddTagsOp>(), R"(["tags"])");
  EXPECT_EQ(required.operator()<RemovePinsOp>(), R"(["targets"])");
  EXPECT_EQ(required.operator()<RenameTagOp>(), R"(["old","new"])");
}

template <class Operation>
typename Operation::Input decoded(std::string_view json) {
  return decodeInput<Operation>(parseJSON(json));
}

TEST(DecodeInput, ReadsWhatIsThereAndPassesOverTheRest) {
  const auto full = decoded<ListNotesOp>(
      R"({"sort":"title","limit":5,"offset":2.0,"tag":null,"includeContent":true,"what":[1]})");
  EXPECT_EQ(full.sort, "title");
  EXPECT_EQ(full.limit, 5);
  EXPECT_EQ(full.offset, 2);
  EXPECT_EQ(full.tag, std::nullopt);
  EXPECT_TRUE(full.includeContent);

  const auto empty = decoded<ListNotesOp>(R"({"includeContent":null})");
  EXPECT_EQ(empty.limit, std::nullopt);
  EXPECT_FALSE(empty.includeContent);

  EXPECT_EQ(decoded<OverwriteNoteOp>(R"({"content":""})").baseHash, std::nullopt);
  const auto data = decoded<AddAttachmentOp>(R"({"filename":"a","data":"AAE="})").data;
  EXPECT_EQ(data.bytes, std::string("\0\1", 2));
}

TEST(DecodeInput, ReadsListsInEveryFormThatClientsSend) {
  using Texts = std::vector<std::string>;
  for (const auto& [json, tags] : {
           std::pair{R"({})", Texts{}},
           {R"({"tags":null})", Texts{}},
           {R"({"tags":["a, b"," c"]})", Texts{"a, b", " c"}},
           {R"({"tags":"work, ,  home,"})", Texts{"work", "home"}},
           {R"({"tags":""})", Texts{}},
       }) {
    EXPECT_EQ(decoded<AddTagsOp>(json).tags, tags) << json;
  }
  const auto expected = [](const char* json) {
    return decoded<OverwriteNoteOp>(json).expectedRemovedAttachments;
  };
  EXPECT_EQ(expected(R"({"content":""})"), std::nullopt);
  EXPECT_EQ(expected(R"({"content":"","expectedRemovedAttachments":[]})"), Texts{});
}

TEST(DecodeInput, NamesTheFaultyField) {
  const auto fault = []<class Operation>(const char* json) {
    return refusal([&] { decoded<Operation>(json); });
  };
  EXPECT_EQ(fault.operator()<SearchNotesOp>("{}"), "invalid input: missing required field: query");
  EXPECT_EQ(fault.operator()<SearchNotesOp>(R"({"query":null})"),
            "invalid input: value missing in field query: expected string, found null");
  EXPECT_EQ(fault.operator()<SearchNotesOp>("[1]"),
            "invalid input: type mismatch in input: expected object, found array");
  EXPECT_EQ(fault.operator()<ListNotesOp>(R"({"limit":"x"})"),
            "invalid input: type mismatch in field limit: expected integer, found string");
  EXPECT_EQ(fault.operator()<ListNotesOp>(R"({"limit":1.5})"),
            "invalid input: invalid input at limit: expected a whole number of 64 bits, found 1.5");
  EXPECT_EQ(fault.operator()<ListNotesOp>(R"({"limit":9223372036854775808})"),
            "invalid input: invalid input at limit: expected a whole number of 64 bits, "
            "found 9223372036854775808");
  EXPECT_EQ(
      fault.operator()<ListNotesOp>(R"({"includeContent":1})"),
      "invalid input: type mismatch in field includeContent: expected boolean, found integer");
  EXPECT_EQ(fault.operator()<AddTagsOp>(R"({"tags":7})"),
            "invalid input: type mismatch in field tags: "
            "expected array of strings or comma-separated string");
  EXPECT_EQ(fault.operator()<AddTagsOp>(R"({"tags":["a",1]})"),
            "invalid input: type mismatch in field tags: "
            "expected array of strings or comma-separated string");
  EXPECT_EQ(fault.operator()<EditNoteOp>("{}"), "invalid input: missing required field: edits");
  EXPECT_EQ(fault.operator()<EditNoteOp>(R"({"edits":"a"})"),
            "invalid input: type mismatch in field edits: expected array, found string");
  EXPECT_EQ(fault.operator()<EditNoteOp>(R"({"edits":[{"find":"a"},7]})"),
            "invalid input: type mismatch in field edits.1: expected object, found integer");
  EXPECT_EQ(fault.operator()<EditNoteOp>(R"({"edits":[{"find":"a"},{"replace":"b"}]})"),
            "invalid input: missing required field: edits.1.find");
  EXPECT_EQ(fault.operator()<EditNoteOp>(R"({"edits":[],"expectedRemovedAttachments":"a.png"})"),
            "invalid input: type mismatch in field expectedRemovedAttachments: "
            "expected array, found string");
  EXPECT_EQ(fault.operator()<AddAttachmentOp>(R"({"filename":"a","data":"?"})"),
            "invalid input: invalid input at data: expected base64 text");
}

}  // namespace
}  // namespace tavi
