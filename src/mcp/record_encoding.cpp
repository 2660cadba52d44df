#include "mcp/record_encoding.h"

#include <optional>

namespace tavi::mcp {
namespace {

/// Writes an object member by member, in the order of the calls.
class ObjectEncoder {
 public:
  explicit ObjectEncoder(JSONWriter& writer) : writer_(writer) { writer_.beginObject(); }

  template <class Value>
  ObjectEncoder& member(std::string_view key, const Value& value) {
    writer_.key(key);
    encode(writer_, value);
    return *this;
  }
  template <class Value>
  ObjectEncoder& member(std::string_view key, const std::optional<Value>& value) {
    return value ? member(key, *value) : *this;
  }
  void end() { writer_.endObject(); }

 private:
  JSONWriter& writer_;
};

/// The metadata whose keys follow "content" alphabetically, of a NoteMetadata or a WriteResponse.
template <class Record>
ObjectEncoder& metadataAfterContent(ObjectEncoder& object, const Record& record) {
  return object.member("contentHash", record.contentHash)
      .member("contentLength", record.contentLength)
      .member("created", record.created)
      .member("done", record.done)
      .member("id", record.id)
      .member("location", record.location)
      .member("locked", record.locked)
      .member("modified", record.modified)
      .member("pins", record.pins)
      .member("tags", record.tags)
      .member("title", record.title)
      .member("todos", record.todos);
}

}  // namespace

void encode(JSONWriter& writer, const NoteMetadata& metadata) {
  ObjectEncoder object(writer);
  object.member("attachments", metadata.attachments);
  metadataAfterContent(object, metadata).end();
}

void encode(JSONWriter& writer, const WriteResponse& response) {
  ObjectEncoder object(writer);
  object.member("attachments", response.attachments).member("content", response.content);
  metadataAfterContent(object, response).end();
}

void encode(JSONWriter& writer, const Note& note) {
  ObjectEncoder(writer).member("content", note.content).member("metadata", note.metadata).end();
}

void encode(JSONWriter& writer, const AttachmentInfo& attachment) {
  ObjectEncoder(writer)
      .member("filename", attachment.filename)
      .member("size", attachment.size)
      .end();
}

void encode(JSONWriter& writer, const SearchMatch& match) {
  ObjectEncoder(writer)
      .member("byteOffset", match.byteOffset)
      .member("snippet", match.snippet)
      .end();
}

void encode(JSONWriter& writer, const SearchResult& result) {
  ObjectEncoder(writer)
      .member("matchCount", result.matchCount)
      .member("metadata", result.metadata)
      .end();
}

void encode(JSONWriter& writer, const SearchResultWithContent& result) {
  ObjectEncoder(writer).member("matchCount", result.matchCount).member("note", result.note).end();
}

}  // namespace tavi::mcp
