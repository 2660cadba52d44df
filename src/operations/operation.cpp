#include "operations/operation.h"

namespace tavi {
namespace {

JSONValue property(const FieldSchema& field) {
  JSONValue::Object property{{"type", rawText(field.type)}, {"description", field.doc.description}};
  if (field.doc.minimum) property.emplace_back("minimum", *field.doc.minimum);
  if (field.arrayItemType) {
    property.emplace_back("items", JSONValue::Object{{"type", rawText(*field.arrayItemType)}});
  }
  return property;
}

}  // namespace

std::string_view rawText(FieldType type) {
  switch (type) {
    case FieldType::string:
      return "string";
    case FieldType::integer:
      return "integer";
    case FieldType::boolean:
      return "boolean";
    case FieldType::array:
      return "array";
  }
  return "";
}

JSONValue schema(std::span<const FieldSchema> fields) {
  JSONValue::Object properties;
  JSONValue::Array required;
  for (const FieldSchema& field : fields) {
    properties.emplace_back(field.doc.name, property(field));
    if (field.required) required.emplace_back(field.doc.name);
  }
  JSONValue::Object schema{
      {"type", "object"}, {"properties", std::move(properties)}, {"additionalProperties", false}};
  if (!required.empty()) schema.emplace_back("required", std::move(required));
  return schema;
}

}  // namespace tavi
