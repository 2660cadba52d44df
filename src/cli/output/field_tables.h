#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "cli/output/field_value.h"
#include "domain/note_records.h"

/// For each kind of record, the fields that can be printed and those printed by default.
namespace tavi {

/// A tag as a record, so that RecordWriter can write it.
struct TagRecord {
  std::string tag;  ///< a hashtag
};
/// A pin context as a record.
struct PinRecord {
  std::string pin;  ///< "global" or a hashtag
};

/// The fields of a kind of record.
template <class Record>
FieldTable<Record> fieldTable() = delete;
template <>
FieldTable<NoteMetadata> fieldTable();
template <>
FieldTable<Note> fieldTable();
template <>
FieldTable<SearchResult> fieldTable();
template <>
FieldTable<SearchResultWithContent> fieldTable();
template <>
FieldTable<SearchMatch> fieldTable();
template <>
FieldTable<AttachmentInfo> fieldTable();
template <>
FieldTable<TagRecord> fieldTable();
template <>
FieldTable<PinRecord> fieldTable();

/// The names that --fields accepts: "all" and the fields of the record.
template <class Record>
std::vector<std::string> fieldNames() {
  std::vector<std::string> names{"all"};
  for (const auto& field : fieldTable<Record>()) names.emplace_back(field.name);
  return names;
}

/// The fields that are printed without --fields.
template <class Record>
inline constexpr std::array<std::string_view, 3> defaultFields{"id", "title", "tags"};
template <>
inline constexpr std::array<std::string_view, 4> defaultFields<SearchResult>{"id", "title", "tags",
                                                                             "matches"};
template <>
inline constexpr auto defaultFields<SearchResultWithContent> = defaultFields<SearchResult>;
template <>
inline constexpr std::array<std::string_view, 2> defaultFields<SearchMatch>{"offset", "snippet"};
template <>
inline constexpr std::array<std::string_view, 2> defaultFields<AttachmentInfo>{"filename", "size"};
template <>
inline constexpr std::array<std::string_view, 1> defaultFields<TagRecord>{"tag"};
template <>
inline constexpr std::array<std::string_view, 1> defaultFields<PinRecord>{"pin"};

}  // namespace tavi
