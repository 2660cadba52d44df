#pragma once

#include <boost/json/value.hpp>
#include <functional>
#include <vector>

#include "domain/note_store.h"
#include "json/json_value.h"
#include "mcp/json_rpc.h"
#include "operations/operation.h"

namespace tavi::mcp {

/// One operation as clients see it.
struct MCPTool {
  OperationMetadata metadata;
  const JSONValue& (*inputSchema)();

  /// Decodes the arguments, an object, and runs the operation. The answer is one JSON object; it
  /// can be written again and again, but only while the store lives: long lists are read then.
  /// Throws OperationError, NoteStoreError, and whatever else the store lets through; so does the
  /// answer.
  std::function<ResultWriter(const boost::json::value& arguments, NoteStore& store)> call;
};

struct MCPToolRegistry {
  /// All 24, in the order of `tools/list`.
  static std::vector<MCPTool> tools();
};

/// Writes a tool as `tools/list` describes it.
void encodeDescriptor(JSONWriter& writer, const MCPTool& tool);

}  // namespace tavi::mcp
