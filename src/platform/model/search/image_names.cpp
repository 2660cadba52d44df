#include "platform/model/search/image_names.h"

#include <sqlite3.h>

#include "platform/system/file_types.h"

namespace tavimodel {
namespace {

void isImageName(sqlite3_context* context, int, sqlite3_value** values) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(values[0]));
  const bool image = bytes != nullptr && platform::system::fileTypeOf(bytes).conformsToImage;
  sqlite3_result_int(context, image ? 1 : 0);
}

}  // namespace

void defineIsImageName(sqlite::Connection& connection) {
  sqlite3_create_function(connection.handle(), "isImageName", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                          nullptr, isImageName, nullptr, nullptr);
}

}  // namespace tavimodel
