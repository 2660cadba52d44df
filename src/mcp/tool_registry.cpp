#include "mcp/tool_registry.h"

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "mcp/record_encoding.h"
#include "operations/attachment_operations.h"
#include "operations/location_operations.h"
#include "operations/pin_operations.h"
#include "operations/read_operations.h"
#include "operations/tag_operations.h"
#include "operations/write_operations.h"
#include "platform/system/base64.h"

namespace tavi::mcp {
namespace {

// Encoders of outputs as JSON objects ---------------------------------------------------------

template <class Output>
void encodeUnder(JSONWriter& writer, std::string_view key, const Output& output) {
  writer.beginObject();
  writer.key(key);
  encode(writer, output);
  writer.endObject();
}

/// Encodes an object with the output as its only member.
auto under(std::string_view key) {
  return [key](JSONWriter& writer, const auto& output) { encodeUnder(writer, key, output); };
}

void asItIs(JSONWriter& writer, const WriteResponse& response) {
  encode(writer, response);
}

/// Encodes a new note as a WriteResponse with all fields, like the answer of other writes.
void asFullResponse(JSONWriter& writer, const Note& note) {
  encode(writer, WriteResponse::full(note.metadata, note.content));
}

void getNoteEnvelope(JSONWriter& writer, const GetNoteOp::Output& output) {
  if (const auto* note = std::get_if<Note>(&output)) return encode(writer, *note);
  encodeUnder(writer, "metadata", std::get<NoteMetadata>(output));
}

/// Encodes an output that is a list with content or one without, under the key for it.
auto either(std::string_view withContent, std::string_view without) {
  return [=](JSONWriter& writer, const auto& output) {
    if (output.index() == 0) return encodeUnder(writer, withContent, std::get<0>(output));
    encodeUnder(writer, without, std::get<1>(output));
  };
}

/// Encodes in pieces, so that there is no second copy of a large attachment in memory.
void asBase64(JSONWriter& writer, const std::string& bytes) {
  constexpr std::size_t piece = 3 * 16384;  // a multiple of 3: only the last piece is padded
  writer.beginObject();
  writer.key("data");
  writer.beginString();
  for (std::size_t at = 0; at < bytes.size(); at += piece)
    writer.stringPart(platform::system::base64Encoded(std::string_view(bytes).substr(at, piece)));
  writer.endString();
  writer.endObject();
}

// Tools ---------------------------------------------------------------------------------------

template <class Operation>
auto execute(const typename Operation::Input& input, NoteStore& store) {
  return Operation::execute(input, store);
}

/// The tool for an operation; `encoder` writes its output.
template <class Operation, class Encoder>
MCPTool tool(Encoder encoder, typename Operation::Output (*run)(const typename Operation::Input&,
                                                                NoteStore&) = execute<Operation>) {
  const auto call = [=](const boost::json::value& arguments, NoteStore& store) -> ResultWriter {
    const auto input = decodeInput<Operation>(arguments);
    const auto output = std::make_shared<typename Operation::Output>(run(input, store));
    return [=](JSONWriter& writer) { encoder(writer, *output); };
  };
  return {Operation::metadata, inputSchema<Operation>, call};
}

/// The tool for an operation without output, which answers with an empty object.
template <class Operation>
MCPTool silentTool() {
  const auto call = [](const boost::json::value& arguments, NoteStore& store) -> ResultWriter {
    Operation::execute(decodeInput<Operation>(arguments), store);
    return [](JSONWriter& writer) { writer.raw("{}"); };
  };
  return {Operation::metadata, inputSchema<Operation>, call};
}

WriteResponse overwriteWithBaseHash(const OverwriteNoteInput& input, NoteStore& store) {
  if (input.baseHash) return OverwriteNoteOp::execute(input, store);
  throw OperationError::invalidInput(
      "baseHash is required for overwrite_note via MCP. Read the note first to obtain the current "
      "contentHash, then pass it back here so the write can be rejected if another client edited "
      "the note in the meantime.");
}

}  // namespace

std::vector<MCPTool> MCPToolRegistry::tools() {
  return {
      tool<CreateNoteOp>(asFullResponse),
      tool<GetNoteOp>(getNoteEnvelope),
      silentTool<OpenNoteOp>(),
      tool<ReadNoteContentOp>(under("content")),
      tool<ListNotesOp>(either("notes", "metadata")),
      tool<SearchNotesOp>(either("resultsWithContent", "results")),
      tool<SearchInNoteOp>(under("matches")),
      tool<AppendToNoteOp>(asItIs),
      tool<OverwriteNoteOp>(asItIs, overwriteWithBaseHash),
      tool<EditNoteOp>(asItIs),
      tool<ListPinsOp>(under("pins")),
      tool<AddPinsOp>(asItIs),
      tool<RemovePinsOp>(asItIs),
      tool<ArchiveNoteOp>(asItIs),
      tool<TrashNoteOp>(asItIs),
      tool<RestoreNoteOp>(asItIs),
      tool<ListTagsOp>(under("tags")),
      tool<AddTagsOp>(asItIs),
      tool<RemoveTagsOp>(asItIs),
      tool<RenameTagOp>(under("notesUpdated")),
      tool<DeleteTagOp>(under("notesUpdated")),
      tool<ListAttachmentsOp>(under("attachments")),
      tool<DeleteAttachmentOp>(asItIs),
      tool<ReadAttachmentOp>(asBase64),
  };
}

void encodeDescriptor(JSONWriter& writer, const MCPTool& tool) {
  const OperationMetadata& metadata = tool.metadata;
  writer.beginObject();
  writer.key("annotations");
  writer.beginObject();
  writer.key("destructiveHint");
  writer.boolean(metadata.destructiveHint);
  writer.key("idempotentHint");
  writer.boolean(metadata.idempotentHint);
  writer.key("readOnlyHint");
  writer.boolean(metadata.readOnlyHint);
  writer.key("title");
  writer.string(metadata.title);
  writer.endObject();
  writer.key("description");
  writer.string(metadata.description);
  writer.key("inputSchema");
  writer.value(tool.inputSchema());
  writer.key("name");
  writer.string(metadata.name);
  writer.key("title");
  writer.string(metadata.title);
  writer.endObject();
}

}  // namespace tavi::mcp
