#pragma once

#include <boost/json/value.hpp>
#include <functional>
#include <vector>

#include "domain/note_store.h"
#include "json/json_value.h"
#include "mcp/json_rpc.h"
#include "operations/operation.h"

namespace tavi::mcp {

/// An operation as an MCP tool.
struct MCPTool {
  OperationMetadata metadata;
  const JSONValue& (*inputSchema)();  ///< JSON Schema (2020-12)

  /// Decodes the arguments, which must be an object, and runs the operation. The returned answer
  /// writes one JSON object. It can be written several times while the store lives: lists are read
  /// from the store on each write. Both throw OperationError, NoteStoreError and the exceptions
  /// that the store passes through.
  std::function<ResultWriter(const boost::json::value& arguments, NoteStore& store)> call;
};

/// The tools that the server offers.
struct MCPToolRegistry {
  /// All tools in the order of `tools/list`.
  static std::vector<MCPTool> tools();
};

/// Writes the description of a tool for `tools/list`.
void encodeDescriptor(JSONWriter& writer, const MCPTool& tool);

}  // namespace tavi::mcp
