#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "domain/note_store.h"
#include "operations/operation.h"

/// The operations that read notes. An `id`/`title` pair identifies one note: exactly one of the two
/// must be given. Numbers must not be negative.
namespace tavi {

/// Input of GetNoteOp.
struct GetNoteInput {
  std::optional<std::string> id, title;
  bool includeContent = false;
};

/// Returns a note's metadata, and its text on request. Accepts locked notes for metadata only.
struct GetNoteOp {
  using Input = GetNoteInput;
  using Output = std::variant<Note, NoteMetadata>;  ///< a Note if `includeContent` is set
  static constexpr OperationMetadata metadata{
      .name = "get_note",
      .title = "Get Note",
      .abstract = "Show note fields as a structured row. Use cat for raw content.",
      .description =
          "Return structured metadata for a Tavi note: id, title, tags, pins, timestamps, counts, "
          "location, attachments, and optionally content. Identify the note by id or title.",
      .readOnlyHint = true,
      .idempotentHint = true};
  struct Fields : NoteFields {
    static constexpr FieldDoc includeContent{
        "includeContent",
        "When true, include the note's raw Markdown content. Locked notes are rejected when "
        "content is requested."};
  };
  static constexpr auto rows = table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
                                     row(Fields::includeContent, &Input::includeContent));
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of ReadNoteContentOp.
struct ReadNoteContentInput {
  std::optional<std::string> id, title;
  std::optional<std::int64_t> offset, limit;  ///< UTF-8 bytes; absent: from the start, to the end
};

/// Returns a note's text, or a range of its bytes.
struct ReadNoteContentOp {
  using Input = ReadNoteContentInput;
  /// Empty if the range starts or ends inside a character.
  using Output = std::string;
  static constexpr OperationMetadata metadata{
      .name = "read_note_content",
      .title = "Read Note Content",
      .abstract = "Print a note's raw content.",
      .description =
          "Return the raw Markdown body of a Tavi note. Identify the note by id or title. Use "
          "offset and limit to read a byte slice of a large note.",
      .readOnlyHint = true,
      .idempotentHint = true};
  struct Fields : NoteFields {
    static constexpr FieldDoc offset{"offset", "Starting UTF-8 byte offset into the content.", 0};
    static constexpr FieldDoc limit{"limit", "Maximum number of UTF-8 bytes to return.", 0};
  };
  static constexpr auto rows =
      table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
            row(Fields::offset, &Input::offset), row(Fields::limit, &Input::limit));
  static Output execute(const Input& input, NoteStore& store);
};

/// The fields that ListNotesOp and SearchNotesOp share.
struct ListingFields {
  static constexpr FieldDoc sort{
      "sort",
      "Sort criteria as comma-separated fields with optional :asc/:desc direction. Valid fields: "
      "pinned, modified, created, title. Defaults to pinned,modified."};
  static constexpr FieldDoc limit{"limit", "Maximum number of notes to return.", 0};
  static constexpr FieldDoc offset{"offset", "Number of notes to skip.", 0};
  static constexpr FieldDoc location{
      "location", "Filter by location: notes, trash, archive, or all. Defaults to notes."};
  static constexpr FieldDoc includeContent{
      "includeContent",
      "When true, include each note's raw Markdown content. Excludes locked notes."};
};

/// Input of ListNotesOp.
struct ListNotesInput {
  std::optional<std::string> sort;            ///< see parseSortCriteria; absent: "pinned,modified"
  std::optional<std::int64_t> limit, offset;  ///< notes; absent: all, from the first
  std::optional<std::string> location;        ///< absent: "notes"
  bool includeContent = false;
  std::optional<std::string> tag;  ///< only notes with this tag or a descendant
  bool detailed = true;            ///< see ListRequest
};

/// Lists notes. The store must outlive the output, which is read while it is visited.
struct ListNotesOp {
  using Input = ListNotesInput;
  using Output = std::variant<RecordList<Note>, RecordList<NoteMetadata>>;
  static constexpr OperationMetadata metadata{
      .name = "list_notes",
      .title = "List Notes",
      .abstract = "List notes without a search query.",
      .description =
          "List Tavi notes, sorted and filtered by location. Returns structured metadata by "
          "default; pass includeContent=true to include each note's raw Markdown body.",
      .readOnlyHint = true,
      .idempotentHint = true};
  struct Fields : ListingFields {
    static constexpr FieldDoc tag{
        "tag",
        "Filter to notes carrying this tag. Matches the tag and any nested children. Surrounding # "
        "and whitespace are stripped. For richer tag queries (negation, multiple tags) use the "
        "search tool."};
  };
  static constexpr auto rows =
      table(row(Fields::sort, &Input::sort), row(Fields::limit, &Input::limit),
            row(Fields::offset, &Input::offset), row(Fields::location, &Input::location),
            row(Fields::includeContent, &Input::includeContent), row(Fields::tag, &Input::tag));
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of SearchNotesOp.
struct SearchNotesInput {
  std::string query;                          ///< in the search language; not blank
  std::optional<std::string> sort;            ///< see parseSortCriteria; absent: "pinned,modified"
  std::optional<std::int64_t> limit, offset;  ///< notes; absent: all, from the first
  std::optional<std::string> location;        ///< absent: "notes"
  bool includeContent = false;
  bool detailed = true;  ///< see ListRequest
};

/// Searches notes. The store must outlive the output, which is read while it is visited.
struct SearchNotesOp {
  using Input = SearchNotesInput;
  using Output = std::variant<RecordList<SearchResultWithContent>, RecordList<SearchResult>>;
  static constexpr OperationMetadata metadata{
      .name = "search_notes",
      .title = "Search Notes",
      .abstract = "Search notes using Tavi's search syntax.",
      .description =
          "Search Tavi notes using Tavi's full search syntax (text, tags, dates, pins, tasks, "
          "attachments, etc.) and return matching notes with per-note match counts.",
      .readOnlyHint = true,
      .idempotentHint = true};
  struct Fields : ListingFields {
    static constexpr FieldDoc query{
        "query",
        "Tavi search query. Supports text terms, \"exact phrases\", -negation, #tag, !#tag "
        "(exact), #*/tag (subtags), @today, @yesterday, @lastXdays, @date(YYYY-MM-DD), @ctoday, "
        "@createdXdays, @cdate, @todo, @done, @task, @tagged, @untagged, @title, @pinned, @images, "
        "@files, @attachments, @code, @locked, @readonly, @empty, @untitled, @wikilinks, "
        "@backlinks, @ocr."};
  };
  static constexpr auto rows = table(
      row(Fields::query, &Input::query), row(Fields::sort, &Input::sort),
      row(Fields::limit, &Input::limit), row(Fields::offset, &Input::offset),
      row(Fields::location, &Input::location), row(Fields::includeContent, &Input::includeContent));
  static Output execute(const Input& input, NoteStore& store);
};

/// Input of SearchInNoteOp.
struct SearchInNoteInput {
  std::optional<std::string> id, title;
  std::string string;
  std::optional<std::int64_t> context;  ///< characters; absent: defaultContext
  std::optional<std::int64_t> limit;    ///< matches; absent: all
};

/// Finds the occurrences of a string in one note.
struct SearchInNoteOp {
  using Input = SearchInNoteInput;
  using Output = std::vector<SearchMatch>;
  static constexpr std::int64_t defaultContext = 120;  ///< characters
  static constexpr OperationMetadata metadata{
      .name = "search_in_note",
      .title = "Search Within Note",
      .abstract = "Find exact string occurrences within a single note.",
      .description =
          "Find exact, case-insensitive occurrences of a string inside a single Tavi note and "
          "return each match with a surrounding snippet.",
      .readOnlyHint = true,
      .idempotentHint = true};
  struct Fields : NoteFields {
    static constexpr FieldDoc string{"string",
                                     "Exact text to find within the note (case-insensitive)."};
    static constexpr FieldDoc context{
        "context", "Snippet length in characters surrounding each match. Defaults to 120.", 0};
    static constexpr FieldDoc limit{"limit", "Maximum number of matches to return.", 0};
  };
  static constexpr auto rows =
      table(row(Fields::id, &Input::id), row(Fields::title, &Input::title),
            row(Fields::string, &Input::string), row(Fields::context, &Input::context),
            row(Fields::limit, &Input::limit));
  static Output execute(const Input& input, NoteStore& store);
};

}  // namespace tavi
