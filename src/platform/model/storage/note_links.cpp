#include "platform/model/storage/note_links.h"

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

void storeLinks(sqlite::Connection& connection, std::int64_t note,
                const std::vector<std::string>& links) {
  for (const std::string& target : links) {
    sqlite::Query insert = connection.query("INSERT OR IGNORE INTO noteLink VALUES (?1, ?2)");
    insert.bind(1, target).bind(2, note).run();
  }
}

}  // namespace tavimodel
