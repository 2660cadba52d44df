#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/model/lists/fetch_request.h"
#include "platform/model/lists/listed_row.h"

namespace tavimodel {

/// Sorts rows in memory, and returns the request's page as indices into `rows`. The order is that
/// of `orderClause`, and it supports localized titles, too.
std::vector<std::uint32_t> sortedPage(const std::vector<ListedRow>& rows,
                                      const FetchRequest& request);

/// Returns " ORDER BY ..." on `noteSummary s`, or an empty string if SQL cannot sort in this order.
std::string orderClause(const FetchRequest& request);

}  // namespace tavimodel
