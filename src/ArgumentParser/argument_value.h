#pragma once

#include <charconv>
#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace ArgumentParser {

/// An enumeration that arguments may be bound to. Beside it stands a function that lists its
/// values as they are written, in the order of help:
///
///   constexpr std::array<std::pair<std::string_view, Format>, 2> argumentValues(Format) {
///     return {{{"tsv", Format::tsv}, {"csv", Format::csv}}};
///   }
template <class T>
concept EnumeratedValue = std::is_enum_v<T> && requires(T value) {
  argumentValues(value);
};

template <class T>
concept IntegerValue = std::integral<T> && !std::same_as<T, bool>;

/// The value that a text stands for, or absent if it stands for none.
inline std::optional<std::string> parseValue(std::string_view text, const std::string&) {
  return std::string(text);
}

/// Decimal digits with an optional sign, within the range of the type.
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

/// A default value as help shows it.
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

/// What a variable holds: its own type, or what an optional or a list is made of.
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
