#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tavi {

/// An immutable JSON value (RFC 8259). Copies are cheap, since payloads are shared. The members of
/// an object keep their order.
class JSONValue {
 public:
  using Array = std::vector<JSONValue>;
  using Object = std::vector<std::pair<std::string, JSONValue>>;
  enum class Kind { string, integer, number, boolean, array, object, null };  // as in `Payload`

  JSONValue() = default;  // null
  JSONValue(std::string text) : payload_(std::make_shared<const std::string>(std::move(text))) {}
  JSONValue(std::string_view text) : JSONValue(std::string(text)) {}
  JSONValue(const char* text) : JSONValue(std::string(text)) {}
  JSONValue(std::same_as<bool> auto truth) : payload_(truth) {}
  JSONValue(std::integral auto number) requires(!std::same_as<decltype(number), bool>)
      : payload_(static_cast<std::int64_t>(number)) {}
  JSONValue(std::floating_point auto number) : payload_(static_cast<double>(number)) {}
  JSONValue(Array elements) : payload_(std::make_shared<const Array>(std::move(elements))) {}
  JSONValue(Object members) : payload_(std::make_shared<const Object>(std::move(members))) {}

  Kind kind() const { return static_cast<Kind>(payload_.index()); }

  /// The payload. Throws std::bad_variant_access if the value is of another kind.
  const std::string& string() const { return *std::get<Shared<std::string>>(payload_); }
  std::int64_t integer() const { return std::get<std::int64_t>(payload_); }
  double number() const { return std::get<double>(payload_); }
  bool boolean() const { return std::get<bool>(payload_); }
  const Array& array() const { return *std::get<Shared<Array>>(payload_); }
  const Object& object() const { return *std::get<Shared<Object>>(payload_); }

  /// The member of this name, null if there is no such member. The last of several wins. Throws
  /// std::bad_variant_access if the value is not an object.
  const JSONValue* find(std::string_view name) const;

  bool operator==(const JSONValue& other) const;

 private:
  template <class T>
  using Shared = std::shared_ptr<const T>;
  using Payload = std::variant<Shared<std::string>, std::int64_t, double, bool, Shared<Array>,
                               Shared<Object>, std::monostate>;
  Payload payload_ = std::monostate{};
};

}  // namespace tavi
