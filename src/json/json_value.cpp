#include "json/json_value.h"

#include <algorithm>

namespace tavi {

const JSONValue* JSONValue::find(std::string_view name) const {
  const Object& members = object();
  const auto found = std::find_if(members.rbegin(), members.rend(),
                                  [&](const auto& member) { return member.first == name; });
  return found == members.rend() ? nullptr : &found->second;
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
