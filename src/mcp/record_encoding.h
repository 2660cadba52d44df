#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "domain/instant.h"
#include "domain/note_records.h"
#include "domain/record_list.h"
#include "domain/write_response.h"
#include "json/json_writer.h"

/// Encodes records as JSON for MCP clients: keys in ascending order, dates in ISO 8601 (UTC),
/// absent fields left out.
namespace tavi::mcp {

void encode(JSONWriter& writer, const NoteMetadata& metadata);
void encode(JSONWriter& writer, const Note& note);
void encode(JSONWriter& writer, const AttachmentInfo& attachment);
void encode(JSONWriter& writer, const SearchMatch& match);
void encode(JSONWriter& writer, const SearchResult& result);
void encode(JSONWriter& writer, const SearchResultWithContent& result);
void encode(JSONWriter& writer, const WriteResponse& response);

inline void encode(JSONWriter& writer, std::string_view text) {
  writer.string(text);
}
inline void encode(JSONWriter& writer, std::int64_t number) {
  writer.integer(number);
}
/// A template, so that pointers do not convert to bool.
void encode(JSONWriter& writer, std::same_as<bool> auto truth) {
  writer.boolean(truth);
}
inline void encode(JSONWriter& writer, Instant instant) {
  writer.string(formatISO8601(instant));
}
inline void encode(JSONWriter& writer, NoteLocation place) {
  writer.string(rawText(place));
}

template <class Record>
void encode(JSONWriter& writer, const std::vector<Record>& records) {
  writer.beginArray();
  for (const Record& record : records) encode(writer, record);
  writer.endArray();
}

/// Reads and writes one row at a time.
template <class Record>
void encode(JSONWriter& writer, const RecordList<Record>& records) {
  writer.beginArray();
  records->forEach([&](const Record& record) { encode(writer, record); });
  writer.endArray();
}

}  // namespace tavi::mcp
