#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/model/storage/text_facts.h"

namespace tavimodel {

namespace sqlite {
class Query;
}

/// A note's own attributes, without its text and its relations.
struct NoteRow {
  std::int64_t id = 0;       ///< 0: not in the database yet
  std::int64_t version = 0;  ///< random; every change by any program gives a new one
  std::string uniqueIdentifier;
  std::optional<std::string> title;
  std::optional<double> creationDate;  ///< seconds since 1970-01-01 UTC
  std::optional<double> modificationDate;
  bool trashed = false;
  bool archived = false;
  bool permanentlyDeleted = false;
  bool pinned = false;
  bool encrypted = false;
  bool readOnly = false;
  std::optional<std::int64_t> searchRow;  ///< in the search index; absent: not indexed
  std::optional<TextFacts> facts;  ///< absent: unknown, since another program changed the text
};

/// The columns of `noteSummary s` from which `readNoteRow` reads, for a SELECT list.
extern const std::string_view noteRowColumns;

/// Reads the query's current row, in which `noteRowColumns` begin at column `first`.
NoteRow readNoteRow(const sqlite::Query& query, int first = 0);

}  // namespace tavimodel
