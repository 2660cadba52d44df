#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// Calls `visit` with the index of each id and the text of its note, in the order of `ids`, one
/// text at a time: it is valid until `visit` returns.
void forEachText(sqlite::Connection& connection, const std::vector<std::int64_t>& ids,
                 const std::function<void(std::size_t index, std::string_view text)>& visit);

}  // namespace tavimodel
