#pragma once

#include <compare>
#include <memory>
#include <string>
#include <string_view>

namespace platform::text {

/// Compares the Unicode code points of the NFC forms, independent of locale; case counts.
/// Canonically equivalent texts are equal.
std::strong_ordering compareByCodePoints(std::string_view a, std::string_view b);

/// Less-than of `compareByCodePoints`, for sorts and sets.
struct CodePointLess {
  bool operator()(std::string_view a, std::string_view b) const {
    return compareByCodePoints(a, b) < 0;
  }
};

/// Orders texts by the rules of the user's locale, ignoring case: "apple", "Éclair", "eclipse",
/// "Zebra". The locale is that of LC_ALL, LC_COLLATE or LANG, or else the root locale. The first
/// comparison takes about a millisecond to load it.
class LocalizedCaseInsensitiveCollator {
 public:
  LocalizedCaseInsensitiveCollator();
  ~LocalizedCaseInsensitiveCollator();
  LocalizedCaseInsensitiveCollator(LocalizedCaseInsensitiveCollator&&) noexcept;
  LocalizedCaseInsensitiveCollator& operator=(LocalizedCaseInsensitiveCollator&&) noexcept;

  /// Negative if `a` precedes `b`, 0 if they are equal, otherwise positive.
  int compare(std::string_view a, std::string_view b) const;

  /// Returns a byte string whose byte order is that of `compare`, for sorting many texts.
  std::string sortKey(std::string_view text) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform::text
