#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/model/lists/fetch_request.h"
#include "platform/model/lists/listed_row.h"

namespace tavimodel {

/// The rows of a request's page, in its order, as indices into `rows`: what `orderClause` would
/// have SQL do, and localized titles besides.
std::vector<std::uint32_t> sortedPage(const std::vector<ListedRow>& rows,
                                      const FetchRequest& request);

/// " ORDER BY ..." over `noteSummary s`, or the empty text where SQL cannot sort so.
std::string orderClause(const FetchRequest& request);

}  // namespace tavimodel
