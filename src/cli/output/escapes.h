#pragma once

#include <string_view>

#include "bytes/byte_sink.h"

namespace tavi {

/// Writes `text` with backslash, line feed, carriage return and tab as \\, \n, \r and \t.
void writeEscapedTSV(ByteSink& sink, std::string_view text);

/// Writes `text` as a cell of CSV (RFC 4180): between double quotes, and those within doubled,
/// where it holds a comma, a double quote or a line break; else as it is.
void writeEscapedCSV(ByteSink& sink, std::string_view text);

}  // namespace tavi
