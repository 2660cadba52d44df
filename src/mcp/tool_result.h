#pragma once

#include <string_view>

#include "mcp/json_rpc.h"

/// The result of `tools/call`, for a tool that answered and for one that failed. A stale server
/// says so in either.
namespace tavi::mcp {

/// The answer twice: its JSON as text, and as structured content. It is not held for that but
/// written a second time, unless it is short. Throws what the answer throws, and an error for an
/// answer that is no object.
void writeToolResult(JSONWriter& writer, std::string_view toolName, const ResultWriter& answer,
                     bool stale);

void writeToolFailure(JSONWriter& writer, std::string_view message, bool stale);

}  // namespace tavi::mcp
