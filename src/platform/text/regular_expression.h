#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/utf8.h"

namespace platform::text {

/// An invalid pattern, or a match that took too long; what() is a sentence for the user.
class RegularExpressionError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A regular expression in ICU syntax. The first one in a process takes about a millisecond to
/// create.
class RegularExpression {
 public:
  /// Throws RegularExpressionError.
  RegularExpression(std::string_view pattern, bool caseInsensitive);
  ~RegularExpression();
  RegularExpression(RegularExpression&&) noexcept;
  RegularExpression& operator=(RegularExpression&&) noexcept;

  /// All matches in the text, ascending and not overlapping, including empty ones. Throws
  /// RegularExpressionError after the time limit of 10 s.
  std::vector<ByteRange> matches(std::string_view text) const;

  /// Escapes all metacharacters in `literal`, so that the pattern matches exactly `literal`.
  static std::string escapedPattern(std::string_view literal);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform::text
