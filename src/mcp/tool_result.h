#pragma once

#include <string_view>

#include "mcp/json_rpc.h"

/// The results of `tools/call`. If the server is stale, they include a warning.
namespace tavi::mcp {

/// Writes the answer twice: its JSON as text, and as structured content. A long answer is not kept
/// in memory but written again. Throws what `answer` throws, and std::runtime_error if the answer
/// is not an object.
void writeToolResult(JSONWriter& writer, std::string_view toolName, const ResultWriter& answer,
                     bool stale);

/// Writes the result of a tool that failed.
void writeToolFailure(JSONWriter& writer, std::string_view message, bool stale);

}  // namespace tavi::mcp
