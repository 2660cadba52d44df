#pragma once

#include <charconv>
#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace ArgumentParser {

/// An enumeration that arguments may be bound to. Its namespace has a function that lists the
/// values and how they are written, in the order in which help shows them:
///
///   constexpr std::array<std::pair<std::string_view, Format>, 2> argumentValues(Format) {
///     return {{{"tsv", Format::tsv}, {"csv", Format::csv}}};
///   }
template <class T>
concept EnumeratedValue = std::is_enum_v<T> && requires(T value) {
  argumentValues(value);
};

/// An integer type that arguments may be bound to.
template <class T>
concept IntegerValue = std::integral<T> && !std::same_as<T, bool>;

/// Parses an argument's text; absent if it is not a value of the type. The second parameter only
/// selects the type.
inline std::optional<std::string> parseValue(std::string_view text, const std::string&) {
  return std::string(text);
}

/// Accepts decimal digits with an optional sign, within the range of the type.
template <IntegerValue T>
std::optional<T> parseValue(std::string_view text, T) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return {};
  }
  T value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return {};
  return value;
}

template <EnumeratedValue T>
std::optional<T> parseValue(std::string_view text, T) {
  for (const auto& [written, value] : argumentValues(T{}))
    if (written == text) return value;
  return {};
}

/// Formats a default value for help.
inline std::string describeValue(const std::string& value) {
  return value;
}

template <IntegerValue T>
std::string describeValue(T value) {
  return std::to_string(value);
}

template <EnumeratedValue T>
std::string describeValue(T value) {
  for (const auto& [written, candidate] : argumentValues(value))
    if (candidate == value) return std::string(written);
  return {};
}

/// Describes a bound variable: the type of its values (the element type of an optional or a list),
/// whether it is a list, and its initial value, which is null if it is not a default.
template <class T>
struct Held {
  using Type = T;
  static constexpr bool isList = false;
  static const Type* initial(const T& variable) { return &variable; }
};
template <class T>
struct Held<std::optional<T>> {
  using Type = T;
  static constexpr bool isList = false;
  static const Type* initial(const std::optional<T>& variable) {
    return variable ? &*variable : nullptr;
  }
};
template <class T>
struct Held<std::vector<T>> {
  using Type = T;
  static constexpr bool isList = true;
  static const Type* initial(const std::vector<T>&) { return nullptr; }
};

}  // namespace ArgumentParser
