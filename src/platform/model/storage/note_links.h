#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// Stores the folded titles that a note's text links to (TextFacts::links). Triggers have already
/// removed the links of its former text. Throws sqlite::Error.
void storeLinks(sqlite::Connection& connection, std::int64_t note,
                const std::vector<std::string>& links);

}  // namespace tavimodel
