#pragma once

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Works out the facts of texts that `noteSummary` does not have yet, into a table of this
/// connection's own: temp.workedOut (note, todoIncomplete, todoCompleted, features). False when it
/// has them all, and then there may be no such table. Locked notes are left out.
bool workOutMissingFacts(sqlite::Connection& connection);

}  // namespace tavimodel
