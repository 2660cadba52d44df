#pragma once

#include <boost/json/value.hpp>
#include <cstddef>
#include <stdexcept>
#include <string_view>

namespace tavi {

/// The text is not JSON. what() says what is wrong and at which byte.
class JSONParseError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The text nests deeper than `deepestJSON`.
class JSONNestedTooDeep : public JSONParseError {
  using JSONParseError::JSONParseError;
};

/// The number of nested arrays and objects that `parseJSON` accepts.
inline constexpr std::size_t deepestJSON = 128;

/// Reads `text` as one JSON value (RFC 8259), with optional blanks around it. Throws
/// JSONParseError, also for ill-formed UTF-8. The escape of a lone surrogate is read as U+FFFD. The
/// last of several members with the same key wins.
boost::json::value parseJSON(std::string_view text);

}  // namespace tavi
