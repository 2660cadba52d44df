#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/model/lists/fetch_request.h"
#include "platform/model/lists/note_view.h"

namespace tavimodel {

/// The rows of a request's page, in its order: as `orderClause` would have SQL do it, localized
/// titles besides. Indices into `rows`.
std::vector<std::size_t> sortedPage(const std::vector<NoteView>& rows, const FetchRequest& request);

/// " ORDER BY ..." over `noteSummary s`, or the empty text where SQL cannot sort so.
std::string orderClause(const FetchRequest& request);

}  // namespace tavimodel
