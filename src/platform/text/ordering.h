#pragma once

#include <compare>
#include <memory>
#include <string>
#include <string_view>

namespace platform::text {

/// Order by Unicode code points of the canonically normalised (NFC) texts. Case counts, no
/// locale. Canonically equivalent texts are equal. ASCII is compared as bytes.
std::strong_ordering compareByCodePoints(std::string_view a, std::string_view b);

/// Less-than of `compareByCodePoints`, for sorts and sets.
struct CodePointLess {
  bool operator()(std::string_view a, std::string_view b) const {
    return compareByCodePoints(a, b) < 0;
  }
};

/// Order as the user's locale sorts words, letter case left out: "apple", "Éclair", "eclipse",
/// "Zebra". Opened on first comparison, at about a millisecond; the locale comes from LC_ALL,
/// LC_COLLATE, LANG, and is the root locale without them.
class LocalizedCaseInsensitiveCollator {
 public:
  LocalizedCaseInsensitiveCollator();
  ~LocalizedCaseInsensitiveCollator();
  LocalizedCaseInsensitiveCollator(LocalizedCaseInsensitiveCollator&&) noexcept;
  LocalizedCaseInsensitiveCollator& operator=(LocalizedCaseInsensitiveCollator&&) noexcept;

  /// Negative, 0 or positive.
  int compare(std::string_view a, std::string_view b) const;

  /// A byte string whose byte order is the order of `compare`: sort many texts by it.
  std::string sortKey(std::string_view text) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform::text
