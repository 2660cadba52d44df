#include "mcp/record_encoding.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace tavi::mcp {
namespace {

template <class Record>
std::string encoded(const Record& record) {
  StringSink sink;
  JSONWriter writer(sink, JSONStyle::wire);
  encode(writer, record);
  return sink.take();
}

const NoteMetadata kMetadata{.id = "A/1",
                             .title = "Mars \"red\"",
                             .locked = false,
                             .contentHash = "0a1b2c3",
                             .contentLength = 12,
                             .created = {1'769'846'709.75},
                             .modified = Instant::distantPast(),
                             .pins = {"global", "#planet"},
                             .location = NoteLocation::archive,
                             .todos = 1,
                             .done = 2,
                             .tags = {"planet"},
                             .attachments = {}};
const std::string kMetadataJSON =
    R"({"attachments":[],"contentHash":"0a1b2c3","contentLength":12,)"
    R"("created":"2026-01-31T08:05:09Z","done":2,"id":"A\/1","location":"archive",)"
    R"("locked":false,"modified":"0001-01-01T00:00:00Z","pins":["global","#planet"],)"
    R"("tags":["planet"],"title":"Mars \"red\"","todos":1})";

TEST(RecordEncoding, SortsTheKeysOfEveryRecord) {
  const Note note{kMetadata, "é\n"};
  const std::string noteJSON = R"({"content":"é\n","metadata":)" + kMetadataJSON + "}";
  EXPECT_EQ(encoded(kMetadata), kMetadataJSON);
  EXPECT_EQ(encoded(note), noteJSON);
  EXPECT_EQ(encoded(SearchResult{kMetadata, 3}),
            R"({"matchCount":3,"metadata":)" + kMetadataJSON + "}");
  EXPECT_EQ(encoded(SearchResultWithContent{note, 3}),
            R"({"matchCount":3,"note":)" + noteJSON + "}");
  EXPECT_EQ(encoded(SearchMatch{7, "a\\nb"}), R"({"byteOffset":7,"snippet":"a\\nb"})");
  EXPECT_EQ(encoded(AttachmentInfo{"a.png", 1}), R"({"filename":"a.png","size":1})");
}

TEST(RecordEncoding, LeavesAbsentFieldsOut) {
  EXPECT_EQ(encoded(WriteResponse{}), "{}");
  WriteResponse response;
  response.locked = false;
  response.todos = 0;
  response.tags.emplace();
  EXPECT_EQ(encoded(response), R"({"locked":false,"tags":[],"todos":0})");
}

TEST(RecordEncoding, PutsTheContentOfAFullResponseInItsPlace) {
  std::string expected = kMetadataJSON;
  expected.insert(expected.find(R"("contentHash")"), R"("content":"text",)");
  EXPECT_EQ(encoded(WriteResponse::full(kMetadata, "text")), expected);
}

}  // namespace
}  // namespace tavi::mcp
