#pragma once

#include "manual/manual_pages.h"

namespace tavi::manual {

/// The page of the search language, tavicli-search-terms(7): its directives are those of the table
/// that searches are parsed by.
ManualPage searchTermsPage(const Release& release);

}  // namespace tavi::manual
