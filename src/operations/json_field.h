#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace boost::json {
class value;
}

/// Reads the members of an input record from JSON. Every reader throws OperationError with a
/// message that names the field by its path ("edits.1.find"; elements count from 0).
namespace tavi {

/// A value in the input and its path. It refers to the caller's JSON value.
struct JSONField {
  const boost::json::value* value;  ///< null if the key is missing
  std::string path;                 ///< empty for the whole input

  /// Whether the key is missing or its value is null.
  bool isAbsent() const;
  /// A member of this field, which must be an object.
  JSONField member(std::string_view key) const;
};

/// Bytes that are base64 text in JSON (RFC 4648).
struct Base64Data {
  std::string bytes;  ///< decoded
};

/// Throws unless the field is an object.
void requireObject(const JSONField& field);
/// The elements of an array. Throws if the field is not an array.
std::vector<JSONField> elements(const JSONField& field);

void read(const JSONField& field, std::string& text);
void read(const JSONField& field, std::int64_t& number);  ///< accepts 5.0 as a whole number
void read(const JSONField& field, bool& truth);           ///< false if absent
void read(const JSONField& field, Base64Data& data);
/// Accepts an array of strings, or one string that is split at commas, trimmed and without empty
/// names. An absent field is an empty list.
void read(const JSONField& field, std::vector<std::string>& list);

/// Accepts an array of strings only. An absent field differs from an empty array.
void read(const JSONField& field, std::optional<std::vector<std::string>>& list);

template <class Value>
void read(const JSONField& field, std::optional<Value>& value) {
  if (!field.isAbsent()) read(field, value.emplace());
}

}  // namespace tavi
