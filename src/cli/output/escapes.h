#pragma once

#include <string_view>

#include "bytes/byte_sink.h"

namespace tavi {

/// Writes `text` with backslash, line feed, carriage return and tab as \\, \n, \r and \t.
void writeEscapedTSV(ByteSink& sink, std::string_view text);

/// Writes `text` as a CSV field (RFC 4180): enclosed in double quotes, with inner quotes doubled,
/// if it contains a comma, a double quote or a line break; otherwise unchanged.
void writeEscapedCSV(ByteSink& sink, std::string_view text);

}  // namespace tavi
