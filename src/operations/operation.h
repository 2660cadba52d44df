#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "domain/failure.h"
#include "json/json_value.h"
#include "operations/json_field.h"

/// The framework of the operations. Everything that the program can do is an operation: a type that
/// names its Input and Output, describes itself, and executes on a NoteStore; it has no instances.
/// The command line and the MCP server fill in the input and run the same code, so that checks,
/// their order and their messages are the same in both:
///
///   struct RenameTagInput { std::string old, new_; bool force = false; };
///
///   struct RenameTagOp {
///     using Input = RenameTagInput;
///     using Output = std::int64_t;
///     static constexpr OperationMetadata metadata{.name = "rename_tag", ...};
///     struct Fields { static constexpr FieldDoc old{"old", "Current tag name."}; ... };
///     static constexpr auto rows = table(row(Fields::old, &Input::old), ...);
///     static Output execute(const Input& input, NoteStore& store);
///   };
///
/// `rows` yields the schema (inputSchema<RenameTagOp>()) and the decoder
/// (decodeInput<RenameTagOp>(json)); the command line takes its help texts from Fields.
namespace tavi {

/// The input of an operation is invalid.
class OperationError : public Failure {
 public:
  static OperationError invalidInput(std::string message) {
    return OperationError(std::move(message));
  }

 private:
  using Failure::Failure;
};

/// The texts and hints of an operation. The hints are the tool annotations of the Model Context
/// Protocol.
struct OperationMetadata {
  std::string_view name;         ///< the tool's name: "append_to_note"
  std::string_view title;        ///< for display: "Append To Note"
  std::string_view abstract;     ///< one line, for the command's help
  std::string_view description;  ///< in full, for MCP clients
  bool readOnlyHint = false;     ///< changes nothing
  bool destructiveHint = false;  ///< may destroy or overwrite data
  bool idempotentHint = false;   ///< repeating a call has no further effect
};

/// The documentation of one input field.
struct FieldDoc {
  std::string_view name;                     ///< the JSON key
  std::string_view description;              ///< for MCP clients and for help
  std::optional<std::int64_t> minimum = {};  ///< for integers; absent: none
};

/// The JSON Schema type of a field.
enum class FieldType { string, integer, boolean, array };
std::string_view rawText(FieldType type);  ///< "string", "integer", "boolean", "array"

/// Maps the type of an input's member to the schema of its field. A field is required if its member
/// cannot be absent; lists of strings may be left out, since the operations check them.
template <class Member>
struct FieldTraits;
template <>
struct FieldTraits<std::string> {
  static constexpr FieldType type = FieldType::string;
  static constexpr bool required = true;
};
template <>
struct FieldTraits<Base64Data> : FieldTraits<std::string> {};
template <>
struct FieldTraits<std::int64_t> {
  static constexpr FieldType type = FieldType::integer;
  static constexpr bool required = true;
};
template <>
struct FieldTraits<bool> {
  static constexpr FieldType type = FieldType::boolean;
  static constexpr bool required = false;
};
template <class Element>
struct FieldTraits<std::vector<Element>> {
  static constexpr FieldType type = FieldType::array;
  static constexpr bool required = true;
};
template <>
struct FieldTraits<std::vector<std::string>> {
  static constexpr FieldType type = FieldType::array;
  static constexpr FieldType item = FieldType::string;
  static constexpr bool required = false;
};
template <class Value>
struct FieldTraits<std::optional<Value>> : FieldTraits<Value> {
  static constexpr bool required = false;
};

/// The schema of one field.
struct FieldSchema {
  FieldDoc doc;
  FieldType type;
  bool required;
  std::optional<FieldType> arrayItemType;  ///< absent unless it is an array of a plain type
};

/// Binds a field's documentation to the member of the input that holds its value.
template <class Input, class Member>
struct Row {
  FieldDoc doc;
  Member Input::*member;
  bool required;

  constexpr FieldSchema schema() const {
    std::optional<FieldType> item;
    if constexpr (requires { FieldTraits<Member>::item; }) item = FieldTraits<Member>::item;
    return {doc, FieldTraits<Member>::type, required, item};
  }
};

template <class Input, class Member>
constexpr Row<Input, Member> row(const FieldDoc& doc, Member Input::*member) {
  return {doc, member, FieldTraits<Member>::required};
}
/// A field that the schema declares as required although the decoder accepts its absence, since the
/// operation's own check has a better message.
template <class Input, class Member>
constexpr Row<Input, Member> requiredRow(const FieldDoc& doc, Member Input::*member) {
  return {doc, member, true};
}

/// The rows of an operation, in the order of its schema.
template <class Input, class... Members>
constexpr std::tuple<Row<Input, Members>...> table(const Row<Input, Members>&... rows) {
  return {rows...};
}

/// The fields of an operation, in the order of its table.
template <class Operation>
std::vector<FieldSchema> fieldSchemas() {
  return std::apply([](const auto&... rows) { return std::vector{rows.schema()...}; },
                    Operation::rows);
}

/// The JSON Schema (2020-12) of an object with exactly these fields.
JSONValue schema(std::span<const FieldSchema> fields);

/// The schema of an operation's input, built on first use.
template <class Operation>
const JSONValue& inputSchema() {
  static const JSONValue built = schema(fieldSchemas<Operation>());
  return built;
}

/// Decodes the input from the arguments of a call, which must be a JSON object. Unknown keys are
/// ignored. Throws an OperationError that names the invalid field.
template <class Operation>
typename Operation::Input decodeInput(const boost::json::value& arguments) {
  const JSONField object{&arguments, ""};
  requireObject(object);
  typename Operation::Input input;
  std::apply(
      [&](const auto&... rows) { (read(object.member(rows.doc.name), input.*rows.member), ...); },
      Operation::rows);
  return input;
}

/// The two fields that identify a note in most inputs.
struct NoteFields {
  static constexpr FieldDoc id{"id", "Note ID. Mutually exclusive with title."};
  static constexpr FieldDoc title{"title",
                                  "Case-insensitive note title. Mutually exclusive with id."};
};

}  // namespace tavi
