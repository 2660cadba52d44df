#pragma once

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Derives the text facts that `noteSummary` lacks, and writes them to a temporary table of this
/// connection: temp.workedOut (note, todoIncomplete, todoCompleted, features). Skips locked notes.
/// Returns false if no facts are missing; the table may then not exist. Throws sqlite::Error.
bool workOutMissingFacts(sqlite::Connection& connection);

}  // namespace tavimodel
