#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace boost::json {
class value;
}

/// Reading the members of an input record from JSON. Every reader throws OperationError, with a
/// message that names the field by its path ("edits.1.find", elements counted from 0).
namespace tavi {

struct JSONField {
  const boost::json::value* value;  ///< nullptr where the key is missing
  std::string path;                 ///< empty for the input as a whole

  /// Whether the key is missing, or its value null.
  bool isAbsent() const;
  /// A member of this field, which is an object.
  JSONField member(std::string_view key) const;
};

/// Bytes that travel as base64 text.
struct Base64Data {
  std::string bytes;
};

void requireObject(const JSONField& field);
/// The elements of an array.
std::vector<JSONField> elements(const JSONField& field);

void read(const JSONField& field, std::string& text);
void read(const JSONField& field, std::int64_t& number);  ///< 5.0 is a whole number as well
void read(const JSONField& field, bool& truth);           ///< absent is false
void read(const JSONField& field, Base64Data& data);
/// An array of strings, or one string of names between commas, blanks around them dropped and
/// empty ones left out; absent is the empty list.
void read(const JSONField& field, std::vector<std::string>& list);

/// An array of strings only. Absent stays apart from empty.
void read(const JSONField& field, std::optional<std::vector<std::string>>& list);

template <class Value>
void read(const JSONField& field, std::optional<Value>& value) {
  if (!field.isAbsent()) read(field, value.emplace());
}

}  // namespace tavi
