#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavimodel {

/// Formats row ids as a JSON array, for `json_each(?)`, so that one statement serves any number of
/// rows.
std::string jsonArray(const std::vector<std::int64_t>& ids);

}  // namespace tavimodel
