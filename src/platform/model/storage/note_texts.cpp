#include "platform/model/storage/note_texts.h"

#include <fmt/format.h>

#include "platform/model/storage/row_ids.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

void forEachText(sqlite::Connection& connection, const std::vector<std::int64_t>& ids,
                 const std::function<void(std::size_t, std::string_view)>& visit) {
  sqlite::Query query = connection.query(
      fmt::format("SELECT {} FROM json_each(?1) wanted CROSS JOIN note ON note.id = wanted.value",
                  readableText));
  const std::string list = jsonArray(ids);
  query.bind(1, list);
  for (std::size_t index = 0; query.step(); ++index) visit(index, query.text(0));
}

}  // namespace tavimodel
