#pragma once

#include <boost/json/value.hpp>
#include <cstddef>
#include <stdexcept>
#include <string_view>

namespace tavi {

/// A text that is not JSON; what() says what is wrong and at which byte.
class JSONParseError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A text that nests deeper than `deepestJSON`.
class JSONNestedTooDeep : public JSONParseError {
  using JSONParseError::JSONParseError;
};

inline constexpr std::size_t deepestJSON = 128;

/// Reads one JSON value (RFC 8259) that fills `text` but for blanks. Throws JSONParseError, also
/// for ill-formed UTF-8. The escape of a lone surrogate stands for U+FFFD. Of a repeated key the
/// last one counts.
boost::json::value parseJSON(std::string_view text);

}  // namespace tavi
