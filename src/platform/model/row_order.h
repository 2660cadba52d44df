#pragma once

#include <vector>

#include "platform/model/fetch_request.h"
#include "platform/model/note_row.h"

namespace tavimodel {

/// Sorts rows as `orderClause` would have SQL do it, localized titles besides, and cuts out the
/// page.
std::vector<NoteRow> sortedPage(std::vector<NoteRow> rows, const FetchRequest& request);

/// " ORDER BY ..." over `noteSummary s`, or the empty text where SQL cannot sort so.
std::string orderClause(const FetchRequest& request);

}  // namespace tavimodel
