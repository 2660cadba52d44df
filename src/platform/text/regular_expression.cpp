#include "platform/text/regular_expression.h"

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <chrono>
#include <optional>

namespace platform::text {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kTimeLimit = std::chrono::seconds(10);

icu::UnicodeString wide(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<int32_t>(text.size())});
}

/// ICU calls this periodically during a match; returning false stops it.
UBool hasTimeLeft(const void* deadline, int32_t /*steps*/) {
  return Clock::now() < *static_cast<const Clock::time_point*>(deadline);
}

/// Converts ascending UTF-16 offsets to UTF-8 offsets of the source, in one pass.
class OffsetMap {
 public:
  explicit OffsetMap(std::string_view text) : text_(text) {}

  std::size_t byteOffset(int32_t unit) {
    while (unit_ < unit && byte_ < text_.size()) {
      const DecodedScalar scalar = decodeScalar(text_, byte_);
      unit_ += scalar.value > 0xFFFF ? 2 : 1;
      byte_ = scalar.next;
    }
    return byte_;
  }

 private:
  std::string_view text_;
  std::size_t byte_ = 0;
  int32_t unit_ = 0;
};

[[noreturn]] void throwMatchError(UErrorCode status) {
  if (status == U_REGEX_STOPPED_BY_CALLER || status == U_REGEX_TIME_OUT) {
    throw RegularExpressionError("The search by regular expression took too long.");
  }
  throw RegularExpressionError(std::string("The search by regular expression failed: ") +
                               u_errorName(status) + ".");
}

}  // namespace

struct RegularExpression::Impl {
  std::unique_ptr<icu::RegexPattern> pattern;
};

RegularExpression::RegularExpression(std::string_view pattern, bool caseInsensitive)
    : impl_(std::make_unique<Impl>()) {
  UErrorCode status = U_ZERO_ERROR;
  UParseError where{};
  const std::uint32_t flags = caseInsensitive ? UREGEX_CASE_INSENSITIVE : 0;
  impl_->pattern.reset(icu::RegexPattern::compile(wide(pattern), flags, where, status));
  if (U_FAILURE(status)) {
    throw RegularExpressionError("The regular expression is not valid: " + std::string(pattern));
  }
}

RegularExpression::~RegularExpression() = default;
RegularExpression::RegularExpression(RegularExpression&&) noexcept = default;
RegularExpression& RegularExpression::operator=(RegularExpression&&) noexcept = default;

std::vector<ByteRange> RegularExpression::matches(std::string_view text) const {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString input = wide(text);
  const std::unique_ptr<icu::RegexMatcher> matcher(impl_->pattern->matcher(input, status));
  const Clock::time_point deadline = Clock::now() + kTimeLimit;
  if (U_SUCCESS(status)) matcher->setMatchCallback(hasTimeLeft, &deadline, status);
  if (U_FAILURE(status)) throwMatchError(status);

  std::vector<ByteRange> result;
  OffsetMap offsets(text);
  while (matcher->find(status)) {
    const std::size_t begin = offsets.byteOffset(matcher->start(status));
    result.push_back({begin, offsets.byteOffset(matcher->end(status))});
  }
  if (U_FAILURE(status)) throwMatchError(status);
  return result;
}

std::string RegularExpression::escapedPattern(std::string_view literal) {
  constexpr std::string_view kMetacharacters = "\\*?+[](){}^$|./";
  std::string result;
  for (const char c : literal) {
    if (kMetacharacters.find(c) != std::string_view::npos) result.push_back('\\');
    result.push_back(c);
  }
  return result;
}

}  // namespace platform::text
