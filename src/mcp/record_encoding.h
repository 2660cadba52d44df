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

/// The records as clients get them: keys in ascending order, dates as ISO 8601 in UTC, and a
/// field that is absent left out.
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
/// A template, so that no pointer is taken for a truth.
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

/// Reads the rows as it writes them.
template <class Record>
void encode(JSONWriter& writer, const RecordList<Record>& records) {
  writer.beginArray();
  records->forEach([&](const Record& record) { encode(writer, record); });
  writer.endArray();
}

}  // namespace tavi::mcp
