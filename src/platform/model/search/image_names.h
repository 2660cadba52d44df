#pragma once

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Defines the SQL function isImageName(filename) for this connection: 1 if the name has the
/// extension of an image type, otherwise 0.
void defineIsImageName(sqlite::Connection& connection);

}  // namespace tavimodel
