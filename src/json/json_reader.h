#pragma once

#include <boost/json/value.hpp>
#include <stdexcept>
#include <string_view>

namespace tavi {

/// A text that is not JSON; what() says what is wrong and at which byte.
class JSONParseError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Reads one JSON value (RFC 8259) that fills `text` but for blanks. Throws JSONParseError, also
/// for ill-formed UTF-8, for lone surrogate escapes, and below a depth of 128. Of a repeated key
/// the last one counts.
boost::json::value parseJSON(std::string_view text);

}  // namespace tavi
