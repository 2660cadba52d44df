#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// Stores the titles that a note's text links to, folded (TextFacts::links). Triggers have removed
/// those of its former text.
void storeLinks(sqlite::Connection& connection, std::int64_t note,
                const std::vector<std::string>& links);

}  // namespace tavimodel
