#include "operations/read_operations.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "operations/note_resolver.h"
#include "operations/tag_name.h"
#include "platform/text/utf8.h"

namespace tavi {
namespace {

void refuseNegative(const std::optional<std::int64_t>& number, const char* message) {
  if (number && *number < 0) throw OperationError::invalidInput(message);
}

SortCriteria parsedSort(const std::optional<std::string>& sort) {
  try {
    return parseSortCriteria(sort ? *sort : "pinned,modified");
  } catch (const SortParseError& error) {
    throw OperationError::invalidInput(error.message());
  }
}

/// Absent for "all".
std::optional<NoteLocation> parsedLocation(const std::optional<std::string>& text) {
  if (!text) return NoteLocation::notes;
  if (*text == "all") return std::nullopt;
  if (const auto location = noteLocation(*text)) return location;
  throw OperationError::invalidInput("Invalid location: " + *text);
}

/// Checks the fields that a list and a search share. A limit of 0 passes: the caller must not send
/// it to the store, but has other checks to do first.
template <class Input>
ListRequest checkedRequest(const Input& input) {
  ListRequest request;
  request.sort = parsedSort(input.sort);
  refuseNegative(input.limit, "Limit must be non-negative");
  refuseNegative(input.offset, "Offset must be non-negative");
  request.location = parsedLocation(input.location);
  request.limit = input.limit.value_or(request.limit);
  request.offset = input.offset.value_or(request.offset);
  request.detailed = input.detailed;
  return request;
}

std::string tagName(const std::string& tag) {
  return checkedTagName(tag, "tag");
}

SearchNotesOp::Output search(const std::string& query, const ListRequest& request,
                             bool includeContent, NoteStore& store) try {
  if (includeContent) {
    if (request.limit == 0) return recordList<SearchResultWithContent>();
    return store.searchNotesWithContent(query, request);
  }
  if (request.limit == 0) return recordList<SearchResult>();
  return store.searchNotes(query, request);
} catch (const std::invalid_argument& error) {
  throw OperationError::invalidInput(error.what());
}

}  // namespace

GetNoteOp::Output GetNoteOp::execute(const Input& input, NoteStore& store) {
  using Resolver = OperationNoteResolver;
  if (input.includeContent)
    return store.noteWithID(Resolver::resolveNoteID(input.id, input.title, store));
  return store.metadataWithID(Resolver::resolveNoteIDEvenIfLocked(input.id, input.title, store));
}

std::string ReadNoteContentOp::execute(const Input& input, NoteStore& store) {
  refuseNegative(input.offset, "Offset must be non-negative");
  refuseNegative(input.limit, "Limit must be non-negative");
  const std::string id = OperationNoteResolver::resolveNoteID(input.id, input.title, store);
  std::string content = store.noteWithID(id).content;
  if (!input.offset && !input.limit) return content;

  const auto start = static_cast<std::size_t>(input.offset.value_or(0));
  if (start >= content.size()) return "";
  const auto limit = static_cast<std::size_t>(input.limit.value_or(INT64_MAX));
  std::string slice = content.substr(start, limit);
  return platform::text::isValidUTF8(slice) ? slice : "";
}

ListNotesOp::Output ListNotesOp::execute(const Input& input, NoteStore& store) {
  ListRequest request = checkedRequest(input);
  if (input.tag) request.tag = tagName(*input.tag);
  if (input.includeContent) {
    if (request.limit == 0) return recordList<Note>();
    return store.listNotesWithContent(request);
  }
  if (request.limit == 0) return recordList<NoteMetadata>();
  return store.listNotes(request);
}

SearchNotesOp::Output SearchNotesOp::execute(const Input& input, NoteStore& store) {
  if (platform::text::trimmingWhitespaceAndNewlines(input.query).empty())
    throw OperationError::invalidInput("Query is required");
  return search(input.query, checkedRequest(input), input.includeContent, store);
}

std::vector<SearchMatch> SearchInNoteOp::execute(const Input& input, NoteStore& store) {
  refuseNegative(input.limit, "Limit must be non-negative");
  refuseNegative(input.context, "Context must be non-negative");
  const std::string id = OperationNoteResolver::resolveNoteID(input.id, input.title, store);
  if (input.limit == 0) return {};
  return store.searchInNote(id, input.string, input.context.value_or(defaultContext), input.limit);
}

}  // namespace tavi
