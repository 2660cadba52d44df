#include "json/json_value.h"

#include <algorithm>
#include <ranges>

namespace tavi {

const JSONValue* JSONValue::find(std::string_view name) const {
  const auto members = object() | std::views::reverse;
  const auto found = std::ranges::find(members, name, &Object::value_type::first);
  return found == members.end() ? nullptr : &found->second;
}

bool JSONValue::operator==(const JSONValue& other) const {
  if (kind() != other.kind()) return false;
  switch (kind()) {
    case Kind::string:
      return string() == other.string();
    case Kind::array:
      return array() == other.array();
    case Kind::object:
      return object() == other.object();
    default:
      return payload_ == other.payload_;
  }
}

}  // namespace tavi
