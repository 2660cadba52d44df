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

/// The frame of the operations. Everything that the program can do is one operation: a type
/// without instances that names its Input and Output, describes itself, and executes on a
/// NoteStore. Both faces fill the input and run the same code, so that checks, their order and
/// their messages are the same on both:
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
/// From `rows` come the schema (inputSchema<RenameTagOp>()) and the decoder
/// (decodeInput<RenameTagOp>(json)); the command line takes its help from Fields.
namespace tavi {

/// Input that an operation refuses.
class OperationError : public Failure {
 public:
  static OperationError invalidInput(std::string message) {
    return OperationError(std::move(message));
  }

 private:
  using Failure::Failure;
};

struct OperationMetadata {
  std::string_view name;         ///< of the tool: "append_to_note"
  std::string_view title;        ///< in words
  std::string_view abstract;     ///< one line
  std::string_view description;  ///< in full, for clients
  bool readOnlyHint = false;     ///< changes nothing
  bool destructiveHint = false;  ///< may destroy or overwrite data
  bool idempotentHint = false;   ///< the same call again has no further effect
};

/// The description of one input field: its JSON key, and its text for clients and for help.
struct FieldDoc {
  std::string_view name;
  std::string_view description;
  std::optional<std::int64_t> minimum = {};  ///< of an integer
};

enum class FieldType { string, integer, boolean, array };
std::string_view rawText(FieldType type);

/// What the type of a record's member says of its field. A field is required when its member has
/// no way to be absent; a list of texts may be left out, since operations check it themselves.
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

/// A field as the schema describes it.
struct FieldSchema {
  FieldDoc doc;
  FieldType type;
  bool required;
  std::optional<FieldType> arrayItemType;
};

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
/// A field that the schema calls required although the decoder lets it be absent: the words of
/// the operation's own check are better.
template <class Input, class Member>
constexpr Row<Input, Member> requiredRow(const FieldDoc& doc, Member Input::*member) {
  return {doc, member, true};
}

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

/// The JSON Schema (2020-12) of an object with these fields and no others.
JSONValue schema(std::span<const FieldSchema> fields);

/// Built on first use.
template <class Operation>
const JSONValue& inputSchema() {
  static const JSONValue built = schema(fieldSchemas<Operation>());
  return built;
}

/// Reads the input from the arguments of a call, which must be a JSON object; keys that no field
/// names are passed over. Throws OperationError, which names the faulty field.
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
