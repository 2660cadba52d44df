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

/// The text of a row of `note`, for a SELECT list. NULL for a locked note: nobody who goes over the
/// texts of many notes may learn anything about it.
inline constexpr std::string_view readableText = "CASE note.encrypted WHEN 0 THEN note.text END";

/// Calls `visit` with the index of each id and the text of its note, in the order of `ids`, one
/// text at a time: it is valid until `visit` returns. The text of a locked note is empty.
void forEachText(sqlite::Connection& connection, const std::vector<std::int64_t>& ids,
                 const std::function<void(std::size_t index, std::string_view text)>& visit);

}  // namespace tavimodel
