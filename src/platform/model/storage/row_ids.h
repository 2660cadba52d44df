#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavimodel {

/// Row ids as a JSON array, for `json_each(?)`: one statement for any number of rows.
std::string jsonArray(const std::vector<std::int64_t>& ids);

}  // namespace tavimodel
