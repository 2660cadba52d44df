#pragma once

#include "manual/manual_pages.h"

namespace tavi::manual {

/// The page on the search language, tavicli-search-terms(7). Its directives come from the table
/// that the query parser uses.
ManualPage searchTermsPage(const Release& release);

}  // namespace tavi::manual
