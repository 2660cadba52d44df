#include "operations/operation.h"

#include <array>

#include "domain/raw_texts.h"

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
  constexpr std::array<std::string_view, 4> texts = {"string", "integer", "boolean", "array"};
  return textOf(texts, type);
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
