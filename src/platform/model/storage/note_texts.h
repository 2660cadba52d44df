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

/// SQL for the text of a `note` row, for a SELECT list. NULL for a locked note, so that no scan of
/// many texts reveals anything about it.
inline constexpr std::string_view readableText = "CASE note.encrypted WHEN 0 THEN note.text END";

/// Calls `visit` with each index into `ids` and that note's text, in the order of `ids`. A text is
/// valid until `visit` returns; that of a locked note is empty. The notes must exist.
void forEachText(sqlite::Connection& connection, const std::vector<std::int64_t>& ids,
                 const std::function<void(std::size_t index, std::string_view text)>& visit);

}  // namespace tavimodel
