#include "cli/output/record_writer.h"

#include <gtest/gtest.h>

#include "cli/output/output_formatter.h"

namespace tavi {
namespace {

Note mars() {
  Note note;
  note.metadata = {.id = "ID-1",
                   .title = "The \"red\"\tplanet, \\",
                   .locked = false,
                   .contentHash = "e3b0c44",
                   .contentLength = 9,
                   .created = Instant{0},
                   .modified = Instant{1769846709.9},
                   .pins = {"global", "#a"},
                   .location = NoteLocation::archive,
                   .todos = 2,
                   .done = 1,
                   .tags = {"a", "red planet", "a/b"},
                   .attachments = {"x,y.png", "z"}};
  note.content = "Line\r\ntwo";
  return note;
}

Note venus() {
  Note note = mars();
  note.metadata.id = "ID-2";
  note.metadata.title = "Venus";
  note.metadata.locked = true;
  note.metadata.tags = {};
  return note;
}

template <class Record>
std::string rows(std::vector<Record> records, OutputFormat format,
                 std::optional<std::string> selected) {
  FormatOptions options{fieldNames<Record>};
  options.fields = std::move(selected);
  const auto fields = OutputFormatter::resolveFields<Record>(options);
  StringSink sink;
  const auto count = static_cast<std::int64_t>(records.size());
  EXPECT_EQ(RecordWriter(sink, format).writeRows(*recordList(std::move(records)), fields), count);
  return sink.take();
}

using enum OutputFormat;

TEST(WriteRows, PrintsTheDefaultFields) {
  const std::vector<Note> notes{mars(), venus()};
  EXPECT_EQ(rows(notes, tsv, {}),
            "ID-1\tThe \"red\"\\tplanet, \\\\\t#a,#red planet#,#a/b\n"
            "ID-2\tVenus\t\n");
  EXPECT_EQ(rows(notes, csv, {}),
            "id,title,tags\n"
            "ID-1,\"The \"\"red\"\"\tplanet, \\\",\"#a,#red planet#,#a/b\"\n"
            "ID-2,Venus,\n");
  EXPECT_EQ(rows(notes, json, {}),
            R"([{"id":"ID-1","title":"The \"red\"\tplanet, \\",)"
            R"("tags":["#a","#red planet#","#a/b"]},{"id":"ID-2","title":"Venus","tags":[]}])"
            "\n");
}

TEST(WriteRows, KnowsNothingOfALockedNotesText) {
  const std::vector<Note> notes{mars(), venus()};
  const char* fields = "all,content";
  EXPECT_EQ(rows(notes, tsv, fields),
            "ID-1\tThe \"red\"\\tplanet, \\\\\tno\t#a,#red planet#,#a/b\te3b0c44\t9\t"
            "1970-01-01T00:00:00Z\t2026-01-31T08:05:09Z\tglobal,#a\tarchive\t2\t1\tx,y.png,z\t"
            "Line\\r\\ntwo\n"
            "ID-2\tVenus\tyes\t\t\t\t1970-01-01T00:00:00Z\t2026-01-31T08:05:09Z\tglobal,#a\t"
            "archive\t\t\t\t\n");
  EXPECT_EQ(rows(std::vector{venus()}, csv, fields),
            "id,title,locked,tags,hash,length,created,modified,pins,location,todos,done,"
            "attachments,content\n"
            "ID-2,Venus,yes,,,,1970-01-01T00:00:00Z,2026-01-31T08:05:09Z,\"global,#a\",archive,"
            ",,,\n");
  EXPECT_EQ(rows(std::vector{venus()}, json, fields),
            R"([{"id":"ID-2","title":"Venus","locked":"yes","tags":[],"hash":null,"length":null,)"
            R"("created":"1970-01-01T00:00:00Z","modified":"2026-01-31T08:05:09Z",)"
            R"("pins":["global","#a"],"location":"archive","todos":null,"done":null,)"
            R"("attachments":null,"content":null}])"
            "\n");
}

TEST(WriteRows, PrintsNoRowsAndNoFields) {
  EXPECT_EQ(rows<Note>({}, tsv, {}), "");
  EXPECT_EQ(rows<Note>({}, csv, {}), "id,title,tags\n");
  EXPECT_EQ(rows<Note>({}, json, {}), "[]\n");
  EXPECT_EQ(rows(std::vector{mars()}, tsv, ""), "\n");
  EXPECT_EQ(rows(std::vector{mars()}, csv, ""), "\n\n");
  EXPECT_EQ(rows(std::vector{mars()}, json, ""), "[{}]\n");
  EXPECT_EQ(rows(std::vector{mars()}, json, "id,id"), "[{\"id\":\"ID-1\",\"id\":\"ID-1\"}]\n");
}

TEST(WriteRows, PrintsEveryKindOfRecord) {
  EXPECT_EQ(rows(std::vector<SearchResult>{{venus().metadata, 3}}, tsv, {}), "ID-2\tVenus\t\t3\n");
  EXPECT_EQ(rows(std::vector<SearchResultWithContent>{{mars(), 3}}, tsv, "matches,content,id"),
            "3\tLine\\r\\ntwo\tID-1\n");
  EXPECT_EQ(rows(std::vector<SearchMatch>{{7, "…a\\nb"}}, json, {}),
            "[{\"offset\":7,\"snippet\":\"…a\\\\nb\"}]\n");
  EXPECT_EQ(rows(std::vector<AttachmentInfo>{{"a,b", 0}}, csv, {}), "filename,size\n\"a,b\",0\n");
  EXPECT_EQ(rows(std::vector<TagRecord>{{"#a/b"}}, json, {}), "[{\"tag\":\"#a/b\"}]\n");
  EXPECT_EQ(rows(std::vector<PinRecord>{{"global"}}, tsv, {}), "global\n");
}

// Two threads write a long list, part by part.
TEST(WriteRows, PrintsALongListInOrder) {
  for (const std::int64_t count : {4095, 4096, 4097, 16384, 16385, 40000}) {
    std::vector<TagRecord> tags;
    std::string lines, array;
    for (std::int64_t i = 0; i < count; ++i) {
      tags.push_back({"#" + std::to_string(i)});
      lines += tags.back().tag + "\n";
      array += (i == 0 ? "[" : ",") + ("{\"tag\":\"" + tags.back().tag + "\"}");
    }
    EXPECT_EQ(rows(tags, tsv, {}), lines);
    EXPECT_EQ(rows(tags, csv, {}), "tag\n" + lines);
    EXPECT_EQ(rows(tags, json, {}), array + "]\n");
  }
}

template <class Write>
std::string written(OutputFormat format, const Write& write) {
  StringSink sink;
  RecordWriter writer(sink, format);
  write(writer);
  return sink.take();
}

TEST(RecordWriter, PrintsOneRecordCountsTextsAndFiles) {
  const auto fields =
      OutputFormatter::resolveFields<TagRecord>(FormatOptions{fieldNames<TagRecord>});
  const auto record = [&](RecordWriter& writer) { writer.writeRecord(TagRecord{"#a"}, fields); };
  EXPECT_EQ(written(tsv, record), "#a\n");
  EXPECT_EQ(written(csv, record), "tag\n#a\n");
  EXPECT_EQ(written(json, record), "{\"tag\":\"#a\"}\n");

  const auto count = [](RecordWriter& writer) { writer.writeCount(12); };
  EXPECT_EQ(written(tsv, count), "12\n");
  EXPECT_EQ(written(csv, count), "count\n12\n");
  EXPECT_EQ(written(json, count), "{\"count\":12}\n");

  const auto content = [](RecordWriter& writer) { writer.writeContent("a\t\"b\"\r\n/"); };
  EXPECT_EQ(written(tsv, content), "a\t\"b\"\r\n/");
  EXPECT_EQ(written(csv, content), "content\n\"a\t\"\"b\"\"\r\n/\"\n");
  EXPECT_EQ(written(json, content), "{\"content\":\"a\\t\\\"b\\\"\\r\\n/\"}\n");

  const auto file = [](RecordWriter& writer) {
    writer.writeAttachment("a,b.bin", std::string_view("\0\xff", 2));
  };
  EXPECT_EQ(written(tsv, file), std::string("\0\xff", 2));
  EXPECT_EQ(written(csv, file), "filename,size,base64\n\"a,b.bin\",2,AP8=\n");
  EXPECT_EQ(written(json, file), "{\"filename\":\"a,b.bin\",\"size\":2,\"base64\":\"AP8=\"}\n");
}

}  // namespace
}  // namespace tavi
