#include "operations/json_field.h"

#include <array>
#include <boost/json/value.hpp>
#include <charconv>
#include <cmath>

#include "operations/comma_list.h"
#include "operations/operation.h"
#include "platform/system/base64.h"

namespace tavi {
namespace {

std::string_view kindName(boost::json::kind kind) {
  switch (kind) {
    case boost::json::kind::null:
      return "null";
    case boost::json::kind::bool_:
      return "boolean";
    case boost::json::kind::int64:
    case boost::json::kind::uint64:
      return "integer";
    case boost::json::kind::double_:
      return "number";
    case boost::json::kind::string:
      return "string";
    case boost::json::kind::array:
      return "array";
    case boost::json::kind::object:
      return "object";
  }
  return "";
}

[[noreturn]] void refuse(const std::string& message) {
  throw OperationError::invalidInput(message);
}

[[noreturn]] void refuseType(const JSONField& field, const std::string& detail) {
  const std::string_view fault = field.value->is_null() ? "value missing in " : "type mismatch in ";
  refuse(std::string(fault) + (field.path.empty() ? "input" : "field " + field.path) + ": " +
         detail);
}

[[noreturn]] void refuseData(const JSONField& field, const std::string& detail) {
  refuse("invalid input at " + field.path + ": " + detail);
}

/// The value of a required field of this kind. Throws OperationError if it is missing or of another
/// kind.
const boost::json::value& require(const JSONField& field, bool (boost::json::value::*is)() const,
                                  const std::string& kind) {
  if (field.value == nullptr) refuse("missing required field: " + field.path);
  if (!(field.value->*is)()) {
    refuseType(field, "expected " + kind + ", found " + std::string(kindName(field.value->kind())));
  }
  return *field.value;
}

/// Formats a number that is not a 64-bit signed integer, as short as possible.
std::string written(const boost::json::value& number) {
  if (!number.is_double()) return std::to_string(number.get_uint64());
  std::array<char, 32> digits;
  return {digits.begin(), std::to_chars(digits.begin(), digits.end(), number.get_double()).ptr};
}

std::string textOf(const boost::json::value& value) {
  return {value.get_string().begin(), value.get_string().end()};
}

}  // namespace

bool JSONField::isAbsent() const {
  return value == nullptr || value->is_null();
}

JSONField JSONField::member(std::string_view key) const {
  return {value->get_object().if_contains(key),
          path.empty() ? std::string(key) : path + "." + std::string(key)};
}

void requireObject(const JSONField& field) {
  (void)require(field, &boost::json::value::is_object, "object");
}

std::vector<JSONField> elements(const JSONField& field) {
  std::vector<JSONField> result;
  for (const auto& element : require(field, &boost::json::value::is_array, "array").get_array())
    result.push_back({&element, field.path + "." + std::to_string(result.size())});
  return result;
}

void read(const JSONField& field, std::string& text) {
  text = textOf(require(field, &boost::json::value::is_string, "string"));
}

void read(const JSONField& field, std::int64_t& number) {
  const auto& value = require(field, &boost::json::value::is_number, "integer");
  if (value.is_int64()) {
    number = value.get_int64();
    return;
  }
  constexpr double limit = 0x1p63;
  const double real = value.is_double() ? value.get_double() : limit;  // uint64: above the limit
  if (real != std::trunc(real) || real < -limit || real >= limit)
    refuseData(field, "expected a whole number of 64 bits, found " + written(value));
  number = static_cast<std::int64_t>(real);
}

void read(const JSONField& field, bool& truth) {
  truth = !field.isAbsent() && require(field, &boost::json::value::is_bool, "boolean").get_bool();
}

void read(const JSONField& field, Base64Data& data) {
  std::string text;
  read(field, text);
  auto bytes = platform::system::base64Decoded(text);
  if (!bytes) refuseData(field, "expected base64 text");
  data.bytes = std::move(*bytes);
}

void read(const JSONField& field, std::vector<std::string>& list) {
  list.clear();
  if (field.isAbsent()) return;
  const auto refuseIf = [&](bool faulty) {
    if (faulty) refuseType(field, "expected array of strings or comma-separated string");
  };
  if (field.value->is_string()) {
    for (std::string& name : trimmedPieces(textOf(*field.value)))
      if (!name.empty()) list.push_back(std::move(name));
    return;
  }
  refuseIf(!field.value->is_array());
  for (const auto& element : field.value->get_array()) {
    refuseIf(!element.is_string());
    list.push_back(textOf(element));
  }
}

void read(const JSONField& field, std::optional<std::vector<std::string>>& list) {
  list.reset();
  if (field.isAbsent()) return;
  list.emplace();
  for (const JSONField& element : elements(field)) read(element, list->emplace_back());
}

}  // namespace tavi
