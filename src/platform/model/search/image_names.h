#pragma once

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Gives this connection the SQL function isImageName(filename): 1 where the name's extension is
/// one of an image's.
void defineIsImageName(sqlite::Connection& connection);

}  // namespace tavimodel
