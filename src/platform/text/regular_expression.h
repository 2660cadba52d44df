#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/utf8.h"

namespace platform::text {

/// A pattern that does not compile, or a match that took too long; what() is a whole sentence.
class RegularExpressionError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A regular expression in ICU syntax. Created only where one is needed: the first one costs
/// about a millisecond of process time.
class RegularExpression {
 public:
  /// Throws RegularExpressionError.
  RegularExpression(std::string_view pattern, bool caseInsensitive);
  ~RegularExpression();
  RegularExpression(RegularExpression&&) noexcept;
  RegularExpression& operator=(RegularExpression&&) noexcept;

  /// All matches over the whole text, ascending, not overlapping, empty ones included. Throws
  /// RegularExpressionError when the time limit (10 s) is hit.
  std::vector<ByteRange> matches(std::string_view text) const;

  /// `literal` with every metacharacter escaped, so that it matches itself.
  static std::string escapedPattern(std::string_view literal);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform::text
